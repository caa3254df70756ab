#include "TrayStatus.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>

namespace TrayStatus {

namespace {

constexpr int kSize = 64;

QImage Greyed(const QImage& image) {
    QImage grey = image.convertToFormat(QImage::Format_ARGB32);
    for (int y = 0; y < grey.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(grey.scanLine(y));
        for (int x = 0; x < grey.width(); ++x) {
            const int value = 96 + qGray(line[x]) / 2;
            line[x] = qRgba(value, value, value, qAlpha(line[x]) * 3 / 4);
        }
    }
    return grey;
}

// A disc in the lower right corner with a white mark: the state's sign.
void PaintBadge(QPainter& painter, TrayState state) {
    static const QColor colours[] = {
        QColor(0x75, 0x75, 0x75), QColor(0xe6, 0x7e, 0x22), QColor(),
        QColor(0xf1, 0xc4, 0x0f), QColor(0x2e, 0xa0, 0x43), QColor(0x8e, 0x44, 0xad)};
    const QRectF disc(kSize * 0.45, kSize * 0.45, kSize * 0.55, kSize * 0.55);
    painter.setPen(QPen(Qt::white, 3));
    painter.setBrush(colours[static_cast<int>(state)]);
    painter.drawEllipse(disc.adjusted(1.5, 1.5, -1.5, -1.5));
    const QPointF c = disc.center();
    const qreal r = disc.width() / 4;
    painter.setPen(QPen(Qt::white, 4, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.setBrush(Qt::NoBrush);
    switch (state) {
    case TrayState::NoModem: // a cross
        painter.drawLine(c + QPointF(-r, -r), c + QPointF(r, r));
        painter.drawLine(c + QPointF(-r, r), c + QPointF(r, -r));
        break;
    case TrayState::SimLocked: // an exclamation mark
        painter.drawLine(c + QPointF(0, -r * 1.2), c + QPointF(0, r * 0.3));
        painter.drawPoint(c + QPointF(0, r * 1.1));
        break;
    case TrayState::Connecting: // three dots
        for (int i = -1; i <= 1; ++i)
            painter.drawPoint(c + QPointF(i * r * 0.9, 0));
        break;
    case TrayState::Connected: // a tick
        painter.drawPolyline(
            QPolygonF{c + QPointF(-r, 0), c + QPointF(-r * 0.3, r * 0.8), c + QPointF(r, -r * 0.8)});
        break;
    case TrayState::Roaming: { // a globe's meridian and equator
        painter.drawEllipse(c, r, r);
        painter.drawLine(c + QPointF(-r, 0), c + QPointF(r, 0));
        painter.drawEllipse(c, r * 0.4, r);
        break;
    }
    case TrayState::Idle:
        break;
    }
}

} // namespace

TrayState stateOf(ModemLink::State link, bool connecting, bool connected, bool roaming) {
    switch (link) {
    case ModemLink::State::Absent:
    case ModemLink::State::Starting:
        return TrayState::NoModem;
    case ModemLink::State::NeedPin:
    case ModemLink::State::NeedPuk:
    case ModemLink::State::NoSim:
    case ModemLink::State::Blocked:
        return TrayState::SimLocked;
    case ModemLink::State::Ready:
        break;
    }
    if (connected)
        return roaming ? TrayState::Roaming : TrayState::Connected;
    return connecting ? TrayState::Connecting : TrayState::Idle;
}

QString iconName(TrayState state) {
    static const char* const names[] = {"dialtone-no-modem",   "dialtone-sim-locked", "dialtone",
                                        "dialtone-connecting", "dialtone-connected",  "dialtone-roaming"};
    return QString::fromLatin1(names[static_cast<int>(state)]);
}

QIcon icon(TrayState state, const QIcon& appIcon) {
    if (state != TrayState::Idle && QIcon::hasThemeIcon(iconName(state)))
        return QIcon::fromTheme(iconName(state));
    if (state == TrayState::Idle)
        return appIcon;
    QImage base = appIcon.pixmap(kSize, kSize).toImage().scaled(kSize, kSize);
    if (state == TrayState::NoModem)
        base = Greyed(base);
    QPainter painter(&base);
    painter.setRenderHint(QPainter::Antialiasing);
    PaintBadge(painter, state);
    painter.end();
    return QIcon(QPixmap::fromImage(base));
}

} // namespace TrayStatus
