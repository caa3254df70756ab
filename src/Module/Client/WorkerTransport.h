#pragma once

#include <QStringList>

#include <memory>

#include "ModemTransport.h"

class GUIThreadAgent;
class WorkNotification;

// The worker thread in this process, reached through GUIThreadAgent; answers and reports arrive on the
// thread that made the transport.
class WorkerTransport : public ModemTransport {
    Q_OBJECT
public:
    // mainWindow is handed to the application shell (null in the tool).
    explicit WorkerTransport(QObject* mainWindow = nullptr, QObject* parent = nullptr);
    ~WorkerTransport() override; // ends the worker (and a link it holds, unless the shell keeps it)

    void start() override;
    bool isReady() const override { return _notification != nullptr; }
    int send(const QString& name, const QVariantMap& request) override;
    void listen(const QString& name) override;

private:
    QObject* _mainWindow;
    std::unique_ptr<QObject> _sender;
    std::unique_ptr<GUIThreadAgent> _agent;
    WorkNotification* _notification = nullptr;
    QStringList _listened;
};
