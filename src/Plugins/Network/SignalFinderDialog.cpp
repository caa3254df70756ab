#include "SignalFinderDialog.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLocale>
#include <QVBoxLayout>

#include "CNSLabels.h"
#include "CNSSignalGauge.h"
#include "CNSSignalTone.h"
#include "FailureText.h"
#include "Network/NetworkController.h"
#include "StatusText.h"

SignalFinderDialog::SignalFinderDialog(ModemLink& link, QWidget* parent) : QDialog(parent) {
    setObjectName(QStringLiteral("signalFinder"));
    setWindowTitle(tr("Signal finder"));
    _network = new NetworkController(link, this);
    _tone = new CNSSignalTone(this);

    auto* layout = new QVBoxLayout(this);
    auto* hint = new QLabel(tr("Move the modem on its cable, slowly, and watch the gauge: the mark shows the "
                               "best signal of the last minute."));
    hint->setWordWrap(true);
    layout->addWidget(hint);
    _gauge = new CNSSignalGauge;
    _gauge->setObjectName(QStringLiteral("gauge"));
    layout->addWidget(_gauge, 1);
    auto* form = new QFormLayout;
    form->addRow(tr("RSCP:"), _rscp = CNSValueLabel(QStringLiteral("rscp"), nullptr, QStringLiteral("-")));
    form->addRow(tr("Ec/Io:"), _ecio = CNSValueLabel(QStringLiteral("ecio"), nullptr, QStringLiteral("-")));
    form->addRow(tr("Bearer:"),
                 _bearer = CNSValueLabel(QStringLiteral("bearer"), nullptr, QStringLiteral("-")));
    form->addRow(tr("Cell:"), _cell = CNSValueLabel(QStringLiteral("cell"), nullptr, QStringLiteral("-")));
    layout->addLayout(form);
    _toneSwitch = new QCheckBox(tr("Play a tone whose pitch follows the signal"));
    _toneSwitch->setObjectName(QStringLiteral("tone"));
    layout->addWidget(_toneSwitch);
    _status = new QLabel;
    _status->setObjectName(QStringLiteral("status"));
    _status->setWordWrap(true);
    layout->addWidget(_status);
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Close);
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    layout->addWidget(buttons);

    connect(_toneSwitch, &QCheckBox::toggled, this, [this](bool on) {
        _tone->setEnabled(on);
        _status->setText(_tone->note());
    });
    connect(_network, &NetworkController::signalRead, this, &SignalFinderDialog::showReading);
    _timer.setInterval(kReadingIntervalMs);
    connect(&_timer, &QTimer::timeout, _network, &NetworkController::readSignal);
    _clock.start();
}

SignalFinderDialog::~SignalFinderDialog() = default;

void SignalFinderDialog::showEvent(QShowEvent* event) {
    QDialog::showEvent(event);
    _network->readSignal();
    _timer.start();
}

void SignalFinderDialog::hideEvent(QHideEvent* event) {
    // Nothing is asked of the modem and nothing sounds while the finder is closed.
    _timer.stop();
    _toneSwitch->setChecked(false);
    QDialog::hideEvent(event);
}

void SignalFinderDialog::showReading(const Outcome& outcome, const SignalSample& sample) {
    if (!outcome.ok()) {
        _gauge->setReading(0, _peak.best(_clock.elapsed()));
        _tone->setDbm(0);
        _status->setText(
            tr("The signal could not be read: %1")
                .arg(QString::fromStdString(FailureText(outcome.code, outcome.cause, FrontEnd::DesktopApp))));
        return;
    }
    const qint64 now = _clock.elapsed();
    _peak.add(now, sample.rssiDbm);
    _gauge->setReading(sample.rssiDbm, _peak.best(now));
    _tone->setDbm(sample.rssiDbm);
    const QLocale locale;
    _rscp->setText(sample.hasRscp() ? tr("%1 dBm").arg(locale.toString(sample.rscpDbm)) : tr("not reported"));
    _ecio->setText(sample.hasEcIo() ? tr("%1 dB").arg(locale.toString(sample.ecIoTenths / 10.0, 'f', 1))
                                    : tr("not reported"));
    _bearer->setText(QString::fromStdString(BearerText(sample.bearer)));
    _cell->setText(sample.hasCell() ? tr("area %1, cell %2")
                                          .arg(QString::number(sample.lac, 16).toUpper(),
                                               QString::number(sample.ci, 16).toUpper())
                                    : QStringLiteral("-"));
    _status->setText(_tone->note());
}
