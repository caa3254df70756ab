#include "CNSTrafficChart.h"

#include <QHelpEvent>
#include <QLocale>
#include <QPainter>
#include <QToolTip>

#include <algorithm>

#include "LocaleFormat.h"

CNSTrafficChart::CNSTrafficChart(QWidget* parent) : QWidget(parent) {
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    setAccessibleName(tr("Traffic per day"));
    describe();
}

QColor CNSTrafficChart::homeColor() {
    return QColor(0x1f, 0x6f, 0xb5);
}

QColor CNSTrafficChart::roamingColor() {
    return QColor(0xe0, 0x7b, 0x1a);
}

void CNSTrafficChart::setDays(const QDate& from, const QDate& to, const QList<StatisticsDayRow>& rows) {
    _home.clear();
    _roaming.clear();
    _from = QDate();
    if (from.isValid() && to.isValid() && from <= to) {
        _from = std::max(from, to.addDays(1 - kMaxDays));
        const auto count = static_cast<qsizetype>(_from.daysTo(to) + 1);
        _home.fill(0, count);
        _roaming.fill(0, count);
        for (const StatisticsDayRow& row : rows) {
            const int index = indexOf(QDate::fromString(row.strDay, QStringLiteral("yyyy/MM/dd")));
            if (index < 0)
                continue;
            // Counts come from a file: saturate instead of wrapping.
            const auto add = [](quint64& sum, quint64 value) {
                sum = value > UINT64_MAX - sum ? UINT64_MAX : sum + value;
            };
            add(_home[index], row.item.noRoamingSendBytes);
            add(_home[index], row.item.noRoamingReceiveBytes);
            add(_roaming[index], row.item.roamingSendBytes);
            add(_roaming[index], row.item.roamingReceiveBytes);
        }
    }
    describe();
    update();
}

// Screen readers cannot see the bars: they read the period's sums and its busiest day.
void CNSTrafficChart::describe() {
    const auto add = [](quint64 a, quint64 b) { return a > UINT64_MAX - b ? UINT64_MAX : a + b; };
    quint64 home = 0;
    quint64 roaming = 0;
    qsizetype busiest = -1;
    quint64 most = 0;
    for (qsizetype i = 0; i < _home.size(); ++i) {
        home = add(home, _home[i]);
        roaming = add(roaming, _roaming[i]);
        if (const quint64 day = add(_home[i], _roaming[i]); day > most) {
            most = day;
            busiest = i;
        }
    }
    if (busiest < 0) {
        setAccessibleDescription(tr("No traffic in this period"));
        return;
    }
    const QLocale locale;
    const auto bytes = [&locale](quint64 count) { return LocaleFormat::dataSize(count, locale); };
    setAccessibleDescription(
        tr("%1 to %2: %3 on the home network, %4 roaming; the busiest day was %5 with %6")
            .arg(locale.toString(_from, QLocale::ShortFormat),
                 locale.toString(_from.addDays(_home.size() - 1), QLocale::ShortFormat), bytes(home),
                 bytes(roaming), locale.toString(_from.addDays(busiest), QLocale::ShortFormat), bytes(most)));
}

int CNSTrafficChart::indexOf(const QDate& day) const {
    if (!day.isValid() || !_from.isValid())
        return -1;
    const qint64 index = _from.daysTo(day);
    return index >= 0 && index < _home.size() ? static_cast<int>(index) : -1;
}

quint64 CNSTrafficChart::homeBytes(const QDate& day) const {
    const int index = indexOf(day);
    return index < 0 ? 0 : _home[index];
}

quint64 CNSTrafficChart::roamingBytes(const QDate& day) const {
    const int index = indexOf(day);
    return index < 0 ? 0 : _roaming[index];
}

QSize CNSTrafficChart::minimumSizeHint() const {
    return {320, 180};
}

QSize CNSTrafficChart::sizeHint() const {
    return {560, 260};
}

void CNSTrafficChart::paintLegend(QPainter& painter, const QWidget& chart,
                                  std::initializer_list<std::pair<QColor, QString>> entries) {
    const QFontMetrics metrics(chart.font());
    const int line = metrics.height();
    int x = 8;
    for (const auto& [color, text] : entries) {
        painter.fillRect(QRect(x, 8, line - 4, line - 4), color);
        x += line;
        painter.setPen(chart.palette().color(QPalette::Text));
        painter.drawText(QPoint(x, 6 + metrics.ascent()), text);
        x += metrics.horizontalAdvance(text) + 16;
    }
}

void CNSTrafficChart::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    const QFontMetrics metrics(font());
    const int line = metrics.height();
    const QPalette& pal = palette();
    painter.fillRect(rect(), pal.base());

    const int legendY = 6;
    paintLegend(painter, *this, {{homeColor(), tr("Home network")}, {roamingColor(), tr("Roaming")}});

    // Heights are scaled on halves so that two near-maximal counters cannot overflow.
    quint64 peak = 0;
    quint64 most = 0;
    for (qsizetype i = 0; i < _home.size(); ++i) {
        peak = std::max(peak, _home[i] / 2 + _roaming[i] / 2);
        most = std::max(most, _home[i] > UINT64_MAX - _roaming[i] ? UINT64_MAX : _home[i] + _roaming[i]);
    }
    const QString peakText = LocaleFormat::dataSize(most);

    const int left = metrics.horizontalAdvance(peakText) + 12;
    _plot = QRect();
    const QRect plot(left, legendY + line + 8, width() - left - 8,
                     height() - (legendY + line + 8) - line - 8);
    if (plot.width() < 10 || plot.height() < 10)
        return;
    painter.setPen(pal.color(QPalette::Mid));
    painter.drawLine(plot.bottomLeft(), plot.bottomRight());
    painter.drawLine(plot.bottomLeft(), plot.topLeft());

    if (most == 0) {
        painter.setPen(pal.color(QPalette::PlaceholderText));
        painter.drawText(plot, Qt::AlignCenter, tr("No traffic in this period"));
        return;
    }
    _plot = plot;
    painter.setPen(pal.color(QPalette::Text));
    painter.drawText(QRect(0, plot.top() - line / 2, left - 6, line), Qt::AlignRight | Qt::AlignVCenter,
                     peakText);

    const double scale = plot.height() / static_cast<double>(std::max<quint64>(peak, 1));
    const double slot = plot.width() / static_cast<double>(_home.size());
    const int barWidth = std::max(1, static_cast<int>(slot * 0.7));
    const int labelEvery =
        std::max(1, static_cast<int>((metrics.horizontalAdvance(QStringLiteral("00")) + 8) / slot) + 1);
    for (qsizetype i = 0; i < _home.size(); ++i) {
        const int barX = plot.left() + static_cast<int>(i * slot + (slot - barWidth) / 2);
        const int homeHeight = static_cast<int>(_home[i] / 2 * scale);
        const int roamingHeight = static_cast<int>(_roaming[i] / 2 * scale);
        if (homeHeight > 0)
            painter.fillRect(QRect(barX, plot.bottom() - homeHeight, barWidth, homeHeight), homeColor());
        if (roamingHeight > 0)
            painter.fillRect(QRect(barX, plot.bottom() - homeHeight - roamingHeight, barWidth, roamingHeight),
                             roamingColor());
        if (i % labelEvery == 0) {
            painter.setPen(pal.color(QPalette::Text));
            const QDate day = _from.addDays(i);
            painter.drawText(QRect(barX - 20, plot.bottom() + 2, barWidth + 40, line),
                             Qt::AlignHCenter | Qt::AlignTop, QLocale().toString(day.day()));
        }
    }
}

int CNSTrafficChart::indexAt(const QPoint& point) const {
    if (_home.isEmpty() || !_plot.contains(point))
        return -1;
    const auto index =
        static_cast<qsizetype>(point.x() - _plot.left()) * _home.size() / std::max(1, _plot.width());
    return index >= 0 && index < _home.size() ? static_cast<int>(index) : -1;
}

bool CNSTrafficChart::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip)
        return QWidget::event(event);
    const auto* help = static_cast<QHelpEvent*>(event);
    const int index = indexAt(help->pos());
    if (index < 0) {
        QToolTip::hideText();
        event->ignore();
        return true;
    }
    QToolTip::showText(help->globalPos(),
                       tr("%1\nHome network: %2\nRoaming: %3")
                           .arg(QLocale().toString(_from.addDays(index), QLocale::ShortFormat),
                                LocaleFormat::dataSize(_home[index]),
                                LocaleFormat::dataSize(_roaming[index])),
                       this);
    return true;
}
