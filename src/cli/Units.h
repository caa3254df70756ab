#pragma once

#include <QtGlobal>

#include <string>

class ModemLink;

// Numbers as people read them in the tool's human output. Sizes in binary units everywhere (KiB, MiB,
// GiB: 123456789 bytes are "117.7 MiB"), rates in the same units per second, durations as h:mm:ss.

std::string ByteText(quint64 bytes);
std::string RateText(quint64 bytesPerSecond);
std::string DurationText(quint64 seconds);
// "4/5 (-67 dBm)", "4/5" when the dBm figure is not known (0), "unknown" for a level outside 0 to 5.
std::string SignalLevelText(int level, int dbm = 0);
// The modem's signal in dBm, 0 when it cannot tell.
int ReadSignalDbm(ModemLink& link);
