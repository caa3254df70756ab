#pragma once

#include <QIcon>
#include <QString>

#include "ModemLink.h"

// What the tray icon shows, one picture per state so that the state reads at a glance (not only from the
// tool tip): the app's icon greyed out without a modem, and with a badge for a SIM that needs its code,
// a connection on its way, a connection, and a connection while roaming.
enum class TrayState { NoModem, SimLocked, Idle, Connecting, Connected, Roaming };

namespace TrayStatus {

TrayState stateOf(ModemLink::State link, bool connecting, bool connected, bool roaming);
// The state's icon name in the icon theme ("dialtone-connected"); a theme may draw its own.
QString iconName(TrayState state);
// The theme's icon of that name, else the app icon painted with the state's badge.
QIcon icon(TrayState state, const QIcon& appIcon);

} // namespace TrayStatus
