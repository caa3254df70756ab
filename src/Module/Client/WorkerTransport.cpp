#include "WorkerTransport.h"

#include "GUIThreadAgent.h"
#include "WorkNotification.h"

WorkerTransport::WorkerTransport(QObject* mainWindow, QObject* parent)
    : ModemTransport(parent), _mainWindow(mainWindow) {}

WorkerTransport::~WorkerTransport() {
    _agent.reset();
}

void WorkerTransport::start() {
    if (_agent)
        return;
    // The sender of every request; the worker answers it by its class name.
    _sender = std::make_unique<QObject>();
    _sender->setObjectName(QStringLiteral("ModemLink"));
    _agent = std::make_unique<GUIThreadAgent>(_mainWindow, _sender.get());
    connect(_agent.get(), &GUIThreadAgent::responded, this,
            [this](const QString& name, const QVariantMap& data) {
                if (name == MESSAGE_USB_UNPLUGGED)
                    emit unplugged();
                else if (_listened.contains(name) || _listened.contains(QString()))
                    emit received(name, data);
            });
    _agent->setServerSetupCompleteTargetCallBack([this](WorkNotification* notification) {
        _notification = notification;
        emit ready();
    });
}

int WorkerTransport::send(const QString& name, const QVariantMap& request) {
    if (!_notification)
        return WORKER_ERR_NO_TARGET;
    listen(name);
    return _notification->sendASyncWorkMessage(name, request);
}

void WorkerTransport::listen(const QString& name) {
    if (!_listened.contains(name))
        _listened.append(name);
}
