#pragma once

#include <QObject>

#include <functional>

#include "EquipmentRecords.h"
#include "Outcome.h"

class ModemLink;

// What the modem tells about itself and its SIM, for the status and information views and for the
// features that need the SIM's identity (account menus, the SIM's profiles, the home region of numbers).
class EquipmentController : public QObject {
    Q_OBJECT
public:
    explicit EquipmentController(ModemLink& link, QObject* parent = nullptr);

    // Maker, model, revision, IMEI, IMSI and own number.
    void readEquipment(std::function<void(Outcome outcome, const BLEquipmentInfo& info)> done);
    // The equipment texts, the network and the four states in one go. The modem's side always succeeds:
    // what it could not tell stays empty.
    void readDiagnostics(std::function<void(Outcome outcome, const BLDiagInfo& info)> done);

private:
    ModemLink& _link;
};
