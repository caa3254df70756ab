#pragma once

#include <QString>

// Where Dialtone keeps its files, after the XDG base directory rules: the stores in the data folder, the
// settings in the configuration folder, the logs in the state folder, each a "dialtone" folder inside
// the base the variable names. A variable that is unset, empty or not an absolute path is ignored and
// its default under $HOME is used. Only paths: nothing is created here.
class XdgPlaces {
public:
    // $XDG_DATA_HOME/dialtone, by default ~/.local/share/dialtone.
    static QString data();
    // $XDG_CONFIG_HOME/dialtone, by default ~/.config/dialtone.
    static QString config();
    // $XDG_STATE_HOME/dialtone, by default ~/.local/state/dialtone.
    static QString state();

    // The base folder: the variable's value when it is an absolute path, else $HOME/<fallback>.
    static QString base(const char* variable, const QString& fallbackUnderHome);
};
