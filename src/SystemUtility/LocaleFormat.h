#pragma once

#include <QLocale>
#include <QString>

// Numbers as people read them, in the user's locale: byte counts in binary units with their
// proper names ("117.7 MiB", in German "117,7 MiB"), rates per second, and durations as hours, minutes
// and seconds.
namespace LocaleFormat {

QString dataSize(quint64 bytes, const QLocale& locale = QLocale());
QString rate(quint64 bytesPerSecond, const QLocale& locale = QLocale());
// "01:01:01"; from 100 hours on the hours take as many digits as they need.
QString duration(quint64 seconds, const QLocale& locale = QLocale());

} // namespace LocaleFormat
