#pragma once

// The real worker thread on the simulated modem, reached as the front ends reach it: an agent, requests
// sent synchronously or not, notifications heard by name.

#include "../core/TempHome.h"
#include "E2ESupport.h"
#include "QtEventLoop.h"

#include "ComOperation.h"
#include "GUIThreadAgent.h"
#include "WorkMessageNames.h"
#include "WorkNotification.h"
#include "WorkThread.h"

#include <QTimer>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <vector>

using namespace std::chrono_literals;

class WorkerWorld : public ::testing::Test {
protected:
    // The simulator first, so that knobs can be set before the worker opens the port.
    void plug(const QStringList& args = {}) {
        _sim = std::make_unique<SimulatedModem>(args);
        ASSERT_TRUE(_sim->started());
    }
    void set(const QString& knob) {
        ASSERT_TRUE(_sim->control("set " + knob).value("ok").toBool()) << knob.toStdString();
    }
    void startWorker() {
        _agent = std::make_unique<GUIThreadAgent>(nullptr, &_module);
        _agent->setServerSetupCompleteTargetCallBack([this](WorkNotification* wn) { _wn = wn; });
        ASSERT_TRUE(waitFor([this] { return _wn != nullptr; }, 15s));
    }
    void start(const QStringList& args = {}) {
        plug(args);
        startWorker();
        ASSERT_EQ(error(sync(MESSAGE_INIT_WORK_THREAD)), 0);
    }
    void stop() {
        NotificationCenter::defaultCenter().removeObserver(&_module);
        _agent.reset();
        _wn = nullptr;
        _sim.reset();
    }
    void TearDown() override { stop(); }

    QVariantMap sync(const QString& name, const QVariant& value = {}) {
        QVariantMap userInfo;
        if (value.isValid())
            WorkNotification::SetValueObject(userInfo, value);
        return _wn->sendworkMessage(name, userInfo, true);
    }
    static int error(const QVariantMap& response) { return WorkNotification::GetErrorCode(response); }
    template <class Record> static Record value(const QVariantMap& response) {
        return WorkNotification::GetValueObject(response).value<Record>();
    }

    // Subscribes to name; every posted notification lands in the list.
    std::shared_ptr<std::vector<Notification>> listen(const QString& name) {
        auto posted = std::make_shared<std::vector<Notification>>();
        NotificationCenter::defaultCenter().addObserver(
            name, &_module, [posted](const Notification& n) { posted->push_back(n); });
        return posted;
    }

    // Runs fn on the worker's thread, between its requests and timer ticks.
    template <class Fn> void onWorker(Fn fn) {
        WorkThread* const worker = WorkThread::GetRequestInterfaceImpObject();
        ASSERT_NE(worker, nullptr);
        QMetaObject::invokeMethod(worker, fn, Qt::BlockingQueuedConnection);
    }
    size_t queuedReports() {
        size_t size = 0;
        onWorker([&size] {
            UnsolicitedReportList* reports = nullptr;
            ComOperation::GetInstance()->getUnsoliciteReportList(reports);
            size = reports->size();
        });
        return size;
    }

    TempHome _home;
    QTimer _module; // stands in for a feature module: the requests' sender
    std::unique_ptr<SimulatedModem> _sim;
    std::unique_ptr<GUIThreadAgent> _agent;
    WorkNotification* _wn = nullptr;
};
