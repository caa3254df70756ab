#pragma once

#include <QWidget>

// The signal finder's large gauge: an arc from -113 dBm (empty) to -51 dBm (full) filled up to the
// signal, a mark at the best value of the last minute, and the figure, bars and quality word in the
// middle. 0 or above means unknown.
class CNSSignalGauge : public QWidget {
    Q_OBJECT
public:
    explicit CNSSignalGauge(QWidget* parent = nullptr);

    void setReading(int dbm, int bestDbm);
    int dbm() const { return _dbm; }
    int bestDbm() const { return _best; }

    QSize sizeHint() const override { return {360, 240}; }
    QSize minimumSizeHint() const override { return {200, 140}; }

    // The colour of a figure: red when poor, amber when fair, green when good.
    static QColor colorOf(int dbm);
    // The figure's quality word, translated.
    static QString qualityText(int dbm);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int _dbm = 0;
    int _best = 0;
};
