#include "LocaleFormat.h"

#include <QCoreApplication>

#include <algorithm>
#include <cstdint>

namespace LocaleFormat {

QString dataSize(quint64 bytes, const QLocale& locale) {
    const auto count = static_cast<qint64>(std::min<quint64>(bytes, INT64_MAX));
    return locale.formattedDataSize(count, 1, QLocale::DataSizeIecFormat);
}

QString rate(quint64 bytesPerSecond, const QLocale& locale) {
    return QCoreApplication::translate("LocaleFormat", "%1/s").arg(dataSize(bytesPerSecond, locale));
}

QString duration(quint64 seconds, const QLocale& locale) {
    const auto twoDigits = [&locale](quint64 value) {
        return locale.toString(value).rightJustified(2, locale.zeroDigit().front());
    };
    return QStringLiteral("%1:%2:%3")
        .arg(twoDigits(seconds / 3600), twoDigits(seconds / 60 % 60), twoDigits(seconds % 60));
}

} // namespace LocaleFormat
