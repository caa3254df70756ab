#pragma once

#include <QWidget>

class ModemLink;

// Signal strength as five rising bars; level 0-5, anything else (no modem, unknown) shows empty bars. The
// tool tip gives the level and, when known, the received power in dBm.
class CNSSignalBars : public QWidget {
    Q_OBJECT
public:
    explicit CNSSignalBars(QWidget* parent = nullptr);

    void setLevel(int level);
    int level() const { return _level; }
    // The received power; 0 or above means unknown.
    void setDbm(int dbm);
    int dbm() const { return _dbm; }

    // Shows the link's signal from now on: the level with every network poll, and the dBm figure read
    // from the modem then while the bars are on screen.
    void follow(ModemLink& link);

    QSize sizeHint() const override { return {30, 16}; }

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;

private:
    void updateToolTip();

    int _level = -1;
    int _dbm = 0;
};
