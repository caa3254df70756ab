#include "CNSSignalGauge.h"

#include <QLocale>
#include <QPainter>
#include <QPainterPath>

#include <algorithm>

#include "Network/SignalSample.h"

namespace {

constexpr int kEmptyDbm = -113;
constexpr int kFullDbm = -51;

// 0..1 along the arc.
double ShareOf(int dbm) {
    return dbm >= 0 ? 0.0 : std::clamp((dbm - kEmptyDbm) / double(kFullDbm - kEmptyDbm), 0.0, 1.0);
}

} // namespace

CNSSignalGauge::CNSSignalGauge(QWidget* parent) : QWidget(parent) {
    setAccessibleName(tr("Signal gauge"));
    setReading(0, 0);
}

QColor CNSSignalGauge::colorOf(int dbm) {
    if (dbm >= 0)
        return QColor(0x9e, 0x9e, 0x9e);
    if (dbm >= -85)
        return QColor(0x2e, 0x9d, 0x4a);
    return dbm >= -97 ? QColor(0xe0, 0x9b, 0x1a) : QColor(0xd0, 0x3b, 0x2f);
}

QString CNSSignalGauge::qualityText(int dbm) {
    const QString word = QString::fromLatin1(SignalSample::qualityWordOf(dbm));
    if (word == QLatin1String("excellent"))
        return tr("excellent");
    if (word == QLatin1String("good"))
        return tr("good");
    if (word == QLatin1String("fair"))
        return tr("fair");
    if (word == QLatin1String("poor"))
        return tr("poor");
    return word == QLatin1String("no signal") ? tr("no signal") : tr("unknown");
}

void CNSSignalGauge::setReading(int dbm, int bestDbm) {
    _dbm = dbm < 0 ? dbm : 0;
    _best = bestDbm < 0 ? bestDbm : 0;
    const QLocale locale;
    setAccessibleDescription(_dbm < 0
                                 ? tr("%1 dBm, %2, best of the last minute %3 dBm")
                                       .arg(locale.toString(_dbm), qualityText(_dbm), locale.toString(_best))
                                 : tr("No signal information"));
    update();
}

void CNSSignalGauge::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const int side = std::min(width(), height() * 2 - 20);
    const int thickness = std::max(10, side / 12);
    const QRectF arc((width() - side) / 2.0 + thickness, 10 + thickness, side - 2.0 * thickness,
                     side - 2.0 * thickness);
    QPen track(palette().color(QPalette::Mid), thickness, Qt::SolidLine, Qt::FlatCap);
    painter.setPen(track);
    painter.drawArc(arc, 0, 180 * 16);
    // Qt's angles run counter-clockwise from three o'clock in sixteenths of a degree.
    if (_dbm < 0) {
        QPen fill(colorOf(_dbm), thickness, Qt::SolidLine, Qt::FlatCap);
        painter.setPen(fill);
        painter.drawArc(arc, 180 * 16, -static_cast<int>(ShareOf(_dbm) * 180 * 16));
    }
    if (_best < 0) {
        painter.save();
        painter.translate(arc.center());
        painter.rotate(-180.0 + ShareOf(_best) * 180.0);
        painter.setPen(QPen(palette().color(QPalette::WindowText), 3));
        painter.drawLine(QPointF(arc.width() / 2 - thickness * 0.8, 0),
                         QPointF(arc.width() / 2 + thickness * 0.8, 0));
        painter.restore();
    }
    const QLocale locale;
    QFont big = font();
    big.setPointSizeF(font().pointSizeF() * 2.6);
    big.setBold(true);
    painter.setFont(big);
    painter.setPen(palette().color(QPalette::WindowText));
    const QRectF middle(arc.left(), arc.center().y() - arc.height() / 4, arc.width(), arc.height() / 4);
    painter.drawText(middle, Qt::AlignHCenter | Qt::AlignBottom,
                     _dbm < 0 ? tr("%1 dBm").arg(locale.toString(_dbm)) : QStringLiteral("–"));
    QFont small = font();
    small.setPointSizeF(font().pointSizeF() * 1.3);
    painter.setFont(small);
    const int bars = SignalSample::barsOf(_dbm);
    const QString words = _dbm < 0 ? tr("%1 of 5 bars, %2").arg(locale.toString(bars), qualityText(_dbm))
                                   : tr("No signal information");
    painter.drawText(QRectF(0, arc.center().y() + 4, width(), 30), Qt::AlignHCenter | Qt::AlignTop, words);
    painter.setFont(font());
    painter.drawText(QRectF(0, arc.center().y() + 34, width(), 24), Qt::AlignHCenter | Qt::AlignTop,
                     _best < 0 ? tr("Best of the last minute: %1 dBm").arg(locale.toString(_best))
                               : QString());
}
