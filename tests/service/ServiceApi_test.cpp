// dialtoned's bus API as a client in another language would use it: the tool started by activation, the
// generic Request, the typed properties and methods, the Notification signal, and a USSD dialogue that one
// client opens and another ends.

#include <QDBusMessage>
#include <QVariantMap>

#include <gtest/gtest.h>

#include "ServiceWorld.h"

using namespace servicetest;
using nlohmann::json;

TEST(ServiceApi, StatusStartsTheServiceWhichAnswersRequestsPropertiesAndMessages) {
    ServiceWorld world;
    ASSERT_TRUE(world.ready());
    ASSERT_EQ(world.servicePid(), -1);

    const clitest::Outcome status = world.dialtone({"--json", "status"});
    ASSERT_EQ(status.status, 0) << status.err;
    EXPECT_EQ(clitest::Parse(status.out)["network"]["provider_name"], "Vodafone.de") << status.out;
    EXPECT_GT(world.servicePid(), 0) << "the bus did not start the service";

    const QDBusMessage reply =
        world.call(QStringLiteral("Request"), {QStringLiteral("MESSAGE_NETWORK_GET_INFO"), QVariantMap()});
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    const QVariantMap response = Plain(reply.arguments().value(0));
    EXPECT_EQ(response.value(QStringLiteral("ERROR_CODE")).toInt(), 0);
    const QVariantMap network = response.value(QStringLiteral("VALUE_OBJECT")).toMap();
    EXPECT_EQ(network.value(QStringLiteral("class")).toString(), QStringLiteral("BLNetworkInfo"));
    EXPECT_EQ(network.value(QStringLiteral("strOperator")).toString(), QStringLiteral("26202"));

    // This process called Request and stays on the bus; the tool has left it.
    // clang-format off
    const std::vector<std::pair<QString, QVariant>> properties = {
        {QStringLiteral("ModemState"), QStringLiteral("ready")},
        {QStringLiteral("SimState"), QStringLiteral("ready")},
        {QStringLiteral("Operator"), QStringLiteral("Vodafone.de (26202)")},
        {QStringLiteral("SignalLevel"), 4},
        {QStringLiteral("SignalDbm"), -78},  // +CSQ: 18
        {QStringLiteral("ConnectionState"), QStringLiteral("disconnected")},
        {QStringLiteral("Clients"), 1u},
    };
    // clang-format on
    for (const auto& [name, expected] : properties) {
        QVariant value;
        EXPECT_TRUE(WaitFor([&] { return (value = world.property(name)) == expected; }, 10s))
            << name.toStdString() << ": " << value.toString().toStdString();
    }

    // Messages: sent through the typed method, and signalled when they arrive.
    NotificationLog log;
    ASSERT_TRUE(world.listen(log));
    // clang-format off
    struct Row { QString number; QString text; QString error; };
    const std::vector<Row> rows = {
        {QStringLiteral("+491701234567"), QStringLiteral("hello from the bus"), {}},
        {QStringLiteral("0170 12x"), QStringLiteral("not a number"), QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs")},
        {QStringLiteral("+491701234567"), QString(), QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs")},
    };
    // clang-format on
    for (const Row& row : rows) {
        const QDBusMessage reply = world.call(QStringLiteral("SendSms"), {row.number, row.text});
        EXPECT_EQ(reply.errorName(), row.error) << row.number.toStdString();
        const auto expected = row.error.isEmpty() ? QDBusMessage::ReplyMessage : QDBusMessage::ErrorMessage;
        EXPECT_EQ(reply.type(), expected);
        EXPECT_TRUE(!row.error.isEmpty() || reply.arguments().value(0).toInt() == 0);
    }
    const json sent = world.modem.dump()["sms"]["sent"];
    ASSERT_EQ(sent.size(), 1u) << sent.dump();
    EXPECT_EQ(sent[0]["to"], "+491701234567");
    EXPECT_EQ(sent[0]["text"], "hello from the bus");

    // A message that arrives while the service lists the storages is in the list, not in a report.
    ASSERT_TRUE(WaitFor([&] { return world.modem.saw("AT+CMGL") > 0; }, 30s))
        << "the service never listed the messages";
    ASSERT_TRUE(world.modem.command("sms +4915112345678 Incoming through the bus").value("ok", false));
    const auto arrived = [&] {
        return log.seen(QStringLiteral("MESSAGE_RPT_RECEIVE_SMS"), [](const QVariantMap& info) {
            return info.value(QStringLiteral("VALUE_OBJECT")).toMap().value(QStringLiteral("strContent")) ==
                   QStringLiteral("Incoming through the bus");
        });
    };
    EXPECT_TRUE(WaitFor(arrived, 30s)) << log.count() << " notifications, none for the message";

    // A USSD dialogue belongs to the modem: a script opens a menu, the tool ends it.
    const QVariantMap menu{{QStringLiteral("class"), QStringLiteral("BLUssdSendCmdInfo")},
                           {QStringLiteral("strCmdString"), QStringLiteral("*135#")}};
    world.call(QStringLiteral("Request"),
               {QStringLiteral("MESSAGE_USSD_SENDCMD"), QVariantMap{{QStringLiteral("VALUE_OBJECT"), menu}}});
    const auto open = [&] { return world.modem.dump()["ussd"].value("session", false); };
    ASSERT_TRUE(WaitFor(open, 10s));
    world.expect({{"ussd", "--cancel"}, 0});
    EXPECT_FALSE(open());
}
