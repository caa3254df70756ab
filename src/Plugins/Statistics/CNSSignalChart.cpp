#include "CNSSignalChart.h"

#include "CNSTrafficChart.h"

#include <QLocale>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace {

constexpr int kTopDbm = -50;
constexpr int kBottomDbm = -115;
constexpr int kGridDbm[] = {-110, -100, -90, -80, -70, -60};

} // namespace

CNSSignalChart::CNSSignalChart(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(tr("Signal of the day"));
    describe();
}

QColor CNSSignalChart::bearerColor() {
    return QColor(0xe0, 0x7b, 0x1a);
}

QColor CNSSignalChart::cellColor() {
    return QColor(0x8e, 0x44, 0xad);
}

void CNSSignalChart::setDay(const QDate& day, const QList<SignalMinute>& minutes) {
    _day = day;
    _minutes.clear();
    for (const SignalMinute& minute : minutes) {
        if (minute.minute.date() == day)
            _minutes.append(minute);
    }
    _changes = SignalHistory::changesOf(_minutes);
    describe();
    update();
}

qsizetype CNSSignalChart::pointCount() const {
    return std::count_if(_minutes.cbegin(), _minutes.cend(),
                         [](const SignalMinute& m) { return m.readings > 0; });
}

// Screen readers cannot see the line: they read the day's range and the number of changes.
void CNSSignalChart::describe() {
    int best = 0, worst = 0;
    for (const SignalMinute& minute : _minutes) {
        if (minute.readings == 0)
            continue;
        best = best == 0 ? minute.bestDbm : std::max(best, minute.bestDbm);
        worst = worst == 0 ? minute.worstDbm : std::min(worst, minute.worstDbm);
    }
    if (best == 0) {
        setAccessibleDescription(tr("No signal recorded on this day"));
        return;
    }
    const QLocale locale;
    const auto bearers =
        std::count_if(_changes.cbegin(), _changes.cend(), [](const SignalChange& c) { return c.bearer; });
    const auto cells =
        std::count_if(_changes.cbegin(), _changes.cend(), [](const SignalChange& c) { return c.cell; });
    setAccessibleDescription(tr("%1: the signal was between %2 and %3 dBm; the bearer changed %4 times, the "
                                "cell %5 times")
                                 .arg(locale.toString(_day, QLocale::ShortFormat), locale.toString(worst),
                                      locale.toString(best), locale.toString(bearers),
                                      locale.toString(cells)));
}

void CNSSignalChart::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QFontMetrics metrics(font());
    const int line = metrics.height();
    const QPalette& pal = palette();
    painter.fillRect(rect(), pal.base());

    const int legendY = 6;
    CNSTrafficChart::paintLegend(painter, *this,
                                 {{pal.color(QPalette::Highlight), tr("Signal (dBm)")},
                                  {bearerColor(), tr("Bearer changed")},
                                  {cellColor(), tr("Cell changed")}});

    const int left = metrics.horizontalAdvance(QStringLiteral("-110")) + 12;
    const QRect plot(left, legendY + line + 8, width() - left - 8,
                     height() - (legendY + line + 8) - line - 8);
    if (plot.width() < 10 || plot.height() < 10)
        return;
    const auto yOf = [&plot](int dbm) {
        return plot.top() +
               (kTopDbm - std::clamp(dbm, kBottomDbm, kTopDbm)) * plot.height() / (kTopDbm - kBottomDbm);
    };
    const auto xOf = [&plot](const QDateTime& at) {
        const int minute = at.time().hour() * 60 + at.time().minute();
        return plot.left() + static_cast<int>(static_cast<qint64>(minute) * plot.width() / (24 * 60));
    };
    const QLocale locale;
    for (const int dbm : kGridDbm) {
        painter.setPen(pal.color(QPalette::Midlight));
        painter.drawLine(plot.left(), yOf(dbm), plot.right(), yOf(dbm));
        painter.setPen(pal.color(QPalette::Text));
        painter.drawText(QRect(0, yOf(dbm) - line / 2, left - 6, line), Qt::AlignRight | Qt::AlignVCenter,
                         locale.toString(dbm));
    }
    for (int hour = 0; hour <= 24; hour += 3) {
        const int hx = plot.left() + hour * plot.width() / 24;
        painter.drawText(QRect(hx - 20, plot.bottom() + 2, 40, line), Qt::AlignHCenter | Qt::AlignTop,
                         QStringLiteral("%1").arg(hour, 2, 10, QLatin1Char('0')));
    }
    painter.setPen(pal.color(QPalette::Mid));
    painter.drawLine(plot.bottomLeft(), plot.bottomRight());
    painter.drawLine(plot.bottomLeft(), plot.topLeft());

    if (pointCount() == 0) {
        painter.setPen(pal.color(QPalette::PlaceholderText));
        painter.drawText(plot, Qt::AlignCenter, tr("No signal recorded on this day"));
        return;
    }
    for (const SignalChange& change : _changes) {
        const int cx = xOf(change.minute);
        if (change.bearer) {
            painter.setPen(QPen(bearerColor(), 2, Qt::DashLine));
            painter.drawLine(cx, plot.top(), cx, plot.bottom());
        }
        if (change.cell) {
            painter.setPen(QPen(cellColor(), 2, Qt::DotLine));
            painter.drawLine(cx + 2, plot.top(), cx + 2, plot.bottom());
        }
    }
    // Best to worst as a light band, the average as the line; a gap of more than a minute breaks both.
    painter.setRenderHint(QPainter::Antialiasing);
    QColor band = pal.color(QPalette::Highlight);
    band.setAlpha(50);
    QPainterPath path;
    QDateTime previous;
    for (const SignalMinute& minute : _minutes) {
        if (minute.readings == 0) {
            previous = QDateTime();
            continue;
        }
        const int mx = xOf(minute.minute);
        painter.fillRect(QRect(mx, yOf(minute.bestDbm), std::max(1, plot.width() / (24 * 60)),
                               std::max(1, yOf(minute.worstDbm) - yOf(minute.bestDbm))),
                         band);
        if (previous.isValid() && previous.secsTo(minute.minute) <= 60)
            path.lineTo(mx, yOf(minute.averageDbm));
        else // a short dash, so that a minute on its own shows too
            path.moveTo(mx, yOf(minute.averageDbm)), path.lineTo(mx + 2, yOf(minute.averageDbm));
        previous = minute.minute;
    }
    painter.setPen(QPen(pal.color(QPalette::Highlight), 2));
    painter.drawPath(path);
}
