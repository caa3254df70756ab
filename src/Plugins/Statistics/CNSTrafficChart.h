#pragma once

#include <QDate>
#include <QList>
#include <QWidget>

#include <initializer_list>
#include <utility>

#include "Statistics/StatisticsController.h"

class QPainter;

// A bar per day of a range: the bytes sent and received on the home network, with the roaming share
// stacked on top in its own colour, and a legend. Days without rows stay empty; rows outside the range and
// rows whose key is not a "yyyy/MM/dd" day are ignored.
class CNSTrafficChart : public QWidget {
    Q_OBJECT
public:
    // Ranges longer than this show only their last kMaxDays days.
    static constexpr int kMaxDays = 366;

    explicit CNSTrafficChart(QWidget* parent = nullptr);

    void setDays(const QDate& from, const QDate& to, const QList<StatisticsDayRow>& rows);

    QDate firstDay() const { return _from; }
    int dayCount() const { return static_cast<int>(_home.size()); }
    // The bar of a day: home and roaming bytes (0 for days outside the range).
    quint64 homeBytes(const QDate& day) const;
    quint64 roamingBytes(const QDate& day) const;

    static QColor homeColor();
    static QColor roamingColor();
    // Colour boxes with their names in a row across the top of a chart.
    static void paintLegend(QPainter& painter, const QWidget& chart,
                            std::initializer_list<std::pair<QColor, QString>> entries);

    QSize minimumSizeHint() const override;
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    // Hovering a bar tells its day and counts.
    bool event(QEvent* event) override;

private:
    void describe();
    int indexOf(const QDate& day) const;
    int indexAt(const QPoint& point) const;

    QDate _from;
    QList<quint64> _home;
    QList<quint64> _roaming;
    QRect _plot; // where the bars were painted last
};
