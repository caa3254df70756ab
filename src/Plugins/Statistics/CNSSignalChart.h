#pragma once

#include <QDate>
#include <QList>
#include <QWidget>

#include "Statistics/SignalHistory.h"

// The signal of one day from the signal history: the average of each minute as a line (broken where
// minutes are missing) over the range between its best and worst reading, with a mark where the bearer
// changed and one where the cell changed, and a legend. The time axis runs from midnight to midnight.
class CNSSignalChart : public QWidget {
    Q_OBJECT
public:
    explicit CNSSignalChart(QWidget* parent = nullptr);

    void setDay(const QDate& day, const QList<SignalMinute>& minutes);

    QDate day() const { return _day; }
    // The minutes with a known signal, drawn as points of the line.
    qsizetype pointCount() const;
    const QList<SignalChange>& changes() const { return _changes; }

    static QColor bearerColor();
    static QColor cellColor();

    QSize minimumSizeHint() const override { return {320, 180}; }
    QSize sizeHint() const override { return {560, 260}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void describe();

    QDate _day;
    QList<SignalMinute> _minutes;
    QList<SignalChange> _changes;
};
