#include "Equipment/EquipmentController.h"

#include "QtEventLoop.h"
#include "RecordingTransport.h"

#include <gtest/gtest.h>

#include <optional>

// Each read sends its own request and hands back the decoded record with the outcome; a failure keeps
// the modem's code and gives an empty record.
TEST(EquipmentController, ReadsDecodeTheRecordAndKeepTheCode) {
    ensureApplication();
    RecordedLink modem;
    EquipmentController controller(modem.link);
    BLEquipmentInfo equipment;
    equipment.strImsi = "262021234567890";
    BLDiagInfo diag;
    diag.strOperator = "26202";

    // clang-format off
    struct Row { bool diagnostics; int code; QString expected; };
    const Row rows[] = {
        {false, WORKER_OK, "262021234567890"},
        {false, WORKER_ERR_TIME_OUT, ""},
        {true, WORKER_OK, "26202"},
        {true, WORKER_ERR_NO_DATA_DEVICE, ""},
    };
    // clang-format on
    for (const Row& row : rows) {
        std::optional<Outcome> outcome;
        QString read;
        if (row.diagnostics) {
            controller.readDiagnostics([&](Outcome o, const BLDiagInfo& info) {
                outcome = o;
                read = info.strOperator;
            });
            modem.transport->answer(MESSAGE_SYSTEM_GET_DIAG_INFO, row.code,
                                    row.code ? QVariant() : QVariant::fromValue(diag));
        } else {
            controller.readEquipment([&](Outcome o, const BLEquipmentInfo& info) {
                outcome = o;
                read = info.strImsi;
            });
            modem.transport->answer(MESSAGE_SYSTEM_GET_EQUIPMENT_INFO, row.code,
                                    row.code ? QVariant() : QVariant::fromValue(equipment));
        }
        ASSERT_TRUE(outcome.has_value()) << row.diagnostics << row.code;
        EXPECT_EQ(outcome->code, row.code);
        EXPECT_EQ(read, row.expected);
    }
}
