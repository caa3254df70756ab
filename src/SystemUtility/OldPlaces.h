#pragma once

#include <QString>
#include <QStringList>

// Earlier versions kept their files in other places under $HOME:
//   ~/Documents/HSPA Modem User Data   the stores and the settings
//   ~/Documents/USB Modem User Data    the dial options of a connection
//   ~/Library/logs/HSPA_USB_MODEM      the logs
// moveAll moves them into the XDG folders once: the settings ("SystemConfig.plist", "OPENLOG",
// "dialtoned.ini", and the tool's older "dialtone-cli.ini", which becomes "dialtoned.ini") with their kept
// copies to the configuration folder, the logs to the state folder, everything else to the data folder.
// The file names do not collide, and names and contents stay as they are.
//
// A file moves with rename(2) when both places share a file system. Otherwise it is copied into
// ".migrating" beside its target, synced, renamed into place, and only then removed from the old place, so
// an interrupted move always leaves the old file whole and the next start finishes it (a copy already in
// place with the same bytes only needs the old file removed). A file never replaces one already in the new
// place: that one stays in use and the old one is kept beside it as "<name>.old". Sub-folders stay where
// they are; a file that cannot be moved stays too and is tried again at the next start. Once nothing
// failed, a marker in the configuration folder records that the move is done and the emptied old folders
// are removed.
class OldPlaces {
public:
    struct Targets {
        QString data;
        QString config;
        QString state;
    };

    // Moves the old places' files under home; returns the lines to show the user, none when there was
    // nothing to move. Processes starting together take turns on a lock on the configuration folder.
    static QStringList moveAll(const QString& home, const Targets& to);

    // Test hook: copy where a rename would do, as across file systems.
    static void setAlwaysCopy(bool copy);
};
