#include <gtest/gtest.h>

#include <QDateTime>

#include "BLRecords.h"
#include "RecordJson.h"
#include "ServiceBus.h"
#include "WorkNotification.h"

namespace {

BLSmsListItem Message(int ref, const QString& text) {
    const QDateTime time(QDate(2024, 5, 16), QTime(18, 2, 7), Qt::UTC);
    return {.nRef = ref, .strAddress = "+491701234567", .dateTime = time, .strContent = text};
}

} // namespace

// What a response carries must come back from the bus as the worker gave it: records as records, lists of
// records as their typed list (the controllers take them with value<QList<R>>()), plain values unchanged.
TEST(ServiceBus, ResponsesSurviveTheWayOverTheBus) {
    registerRecordMetaTypes();
    BLNetworkInfo network;
    network.strOperator = QStringLiteral("26202");
    network.strSpName = QStringLiteral("Vodafone.de");
    network.nRssi = 4;
    const QList<BLSmsListItem> messages{Message(1, QStringLiteral("Grüße 😀")), Message(2, QString())};
    // clang-format off
    const QList<QVariantMap> responses{
        {{ERROR_CODE, 0}, {VALUE_OBJECT, QVariant::fromValue(network)}},
        {{ERROR_CODE, 0}, {VALUE_OBJECT, QVariant::fromValue(messages)}},
        {{ERROR_CODE, 46}, {SUB_ERROR_CODE, 100}},
        {{VALUE_OBJECT, QVariant::fromValue<qulonglong>(123456789012345ULL)}, {USER_INFO, QVariantMap{{QStringLiteral("GUI_TICKET"), 7}}}},
        {{VALUE_OBJECT, QStringList{QStringLiteral("a"), QStringLiteral("b")}}, {QStringLiteral("flag"), true}},
    };
    // clang-format on
    for (const QVariantMap& response : responses) {
        QVariantMap back;
        ASSERT_TRUE(ServiceBus::fromBus(ServiceBus::toBus(response), back));
        EXPECT_EQ(MapToJson(back), MapToJson(response));
    }
    QVariantMap back;
    ASSERT_TRUE(ServiceBus::fromBus(ServiceBus::toBus(responses[1]), back));
    EXPECT_EQ(WorkNotification::GetValueObject(back).value<QList<BLSmsListItem>>(), messages);
}

// Values D-Bus cannot carry never reach the bus; a peer's value of an unknown record is refused, not
// guessed at, and the rest of the dictionary is kept.
TEST(ServiceBus, WhatCannotTravelIsLeftOut) {
    registerRecordMetaTypes();
    const QVariantMap onBus = ServiceBus::toBus({{QStringLiteral("none"), QVariant()}, {QStringLiteral("text"), QString()}});
    EXPECT_TRUE(onBus.isEmpty());

    QVariantMap back;
    EXPECT_FALSE(ServiceBus::fromBus({{VALUE_OBJECT, QVariantMap{{QStringLiteral("class"), QStringLiteral("NoSuchRecord")}}},
                                      {ERROR_CODE, 0}},
                                     back));
    EXPECT_EQ(back, (QVariantMap{{ERROR_CODE, 0}}));
}
