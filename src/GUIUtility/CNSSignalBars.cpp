#include "CNSSignalBars.h"

#include <QEvent>
#include <QPainter>

CNSSignalBars::CNSSignalBars(QWidget* parent) : QWidget(parent) {
    setMinimumSize(sizeHint());
    setToolTip(tr("Signal strength"));
    setAccessibleName(tr("Signal strength"));
    setAccessibleDescription(tr("No signal information"));
}

bool CNSSignalBars::event(QEvent* event) {
    // Screen readers read the level from the tool tip's words; setting them as the description also tells
    // them when it changes.
    if (event->type() == QEvent::ToolTipChange)
        setAccessibleDescription(toolTip());
    return QWidget::event(event);
}

void CNSSignalBars::setLevel(int level) {
    level = (level >= 0 && level <= 5) ? level : -1;
    if (level == _level)
        return;
    _level = level;
    setToolTip(level < 0 ? tr("No signal information") : tr("Signal %1 of 5").arg(level));
    update();
}

void CNSSignalBars::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    constexpr int kBars = 5;
    const qreal gap = 2;
    const qreal barWidth = (width() - gap * (kBars - 1)) / kBars;
    for (int i = 0; i < kBars; ++i) {
        const qreal barHeight = height() * (i + 1) / qreal(kBars);
        const QRectF bar(i * (barWidth + gap), height() - barHeight, barWidth, barHeight);
        const bool lit = i < _level;
        painter.setPen(Qt::NoPen);
        painter.setBrush(lit ? palette().color(QPalette::Highlight) : palette().color(QPalette::Mid));
        painter.drawRoundedRect(bar, 1, 1);
    }
}
