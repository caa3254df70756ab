#include "SignalRecorder.h"

#include "ModemLink.h"
#include "WorkMessageNames.h"
#include "WorkNotification.h"

SignalRecorder::SignalRecorder(ModemLink& link, QObject* parent) : QObject(parent), _link(link) {
    connect(&_link, &ModemLink::networkChanged, this, [this] {
        if (_reading || _link.transport().ownerElsewhere())
            return;
        _reading = true;
        _link.request(
            MESSAGE_NETWORK_GET_SIGNAL, {},
            [this](const QVariantMap& response) {
                _reading = false;
                if (WorkNotification::GetErrorCode(response) == WORKER_OK)
                    _history.add(SignalSample::fromValue(WorkNotification::GetValueObject(response)),
                                 QDateTime::currentDateTime());
            },
            this);
    });
    // The minute gathered so far is written when the modem goes.
    connect(&_link, &ModemLink::stateChanged, this, [this](ModemLink::State state) {
        if (state != ModemLink::State::Ready)
            _history.flush();
    });
}

SignalRecorder::~SignalRecorder() {
    _history.flush();
}
