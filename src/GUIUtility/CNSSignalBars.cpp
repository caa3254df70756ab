#include "CNSSignalBars.h"

#include <QEvent>
#include <QLocale>
#include <QPainter>

#include "ModemLink.h"
#include "WorkMessageNames.h"
#include "WorkNotification.h"

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
    if (level < 0)
        _dbm = 0;
    updateToolTip();
    update();
}

void CNSSignalBars::setDbm(int dbm) {
    _dbm = dbm < 0 ? dbm : 0;
    updateToolTip();
}

void CNSSignalBars::updateToolTip() {
    if (_level < 0)
        setToolTip(tr("No signal information"));
    else if (_dbm < 0)
        setToolTip(tr("Signal %1 of 5 (%2 dBm)").arg(QLocale().toString(_level), QLocale().toString(_dbm)));
    else
        setToolTip(tr("Signal %1 of 5").arg(QLocale().toString(_level)));
}

void CNSSignalBars::follow(ModemLink& link) {
    connect(&link, &ModemLink::stateChanged, this, [this](ModemLink::State state) {
        if (state != ModemLink::State::Ready)
            setLevel(-1);
    });
    connect(&link, &ModemLink::networkChanged, this, [this, &link](const BLNetworkInfo& network) {
        setLevel(network.nRssi);
        if (!isVisible() || _level < 0)
            return;
        link.request(
            MESSAGE_NETWORK_GET_SIGNAL_DBM, {},
            [this](const QVariantMap& response) {
                if (_level >= 0)
                    setDbm(WorkNotification::GetErrorCode(response) == WORKER_OK
                               ? WorkNotification::GetValueObject(response).toInt()
                               : 0);
            },
            this);
    });
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
