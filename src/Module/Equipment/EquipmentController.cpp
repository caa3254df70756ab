#include "EquipmentController.h"

#include "ModemLink.h"
#include "WorkMessageNames.h"

EquipmentController::EquipmentController(ModemLink& link, QObject* parent) : QObject(parent), _link(link) {}

void EquipmentController::readEquipment(std::function<void(Outcome, const BLEquipmentInfo&)> done) {
    _link.request(
        MESSAGE_SYSTEM_GET_EQUIPMENT_INFO, {},
        [done](const QVariantMap& response) {
            done(Outcome::of(response), WorkNotification::GetValueObject(response).value<BLEquipmentInfo>());
        },
        this);
}

void EquipmentController::readDiagnostics(std::function<void(Outcome, const BLDiagInfo&)> done) {
    _link.request(
        MESSAGE_SYSTEM_GET_DIAG_INFO, {},
        [done](const QVariantMap& response) {
            done(Outcome::of(response), WorkNotification::GetValueObject(response).value<BLDiagInfo>());
        },
        this);
}
