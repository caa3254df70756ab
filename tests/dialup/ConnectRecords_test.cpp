#include "ConnectRecords.h"

#include <QBuffer>
#include <QVariant>

#include <gtest/gtest.h>

namespace {

BLConnectDialinfo roundTrip(const BLConnectDialinfo& in) {
    QByteArray bytes;
    QDataStream writer(&bytes, QIODevice::WriteOnly);
    in.encodeWithCoder(writer);
    QDataStream reader(bytes);
    BLConnectDialinfo out;
    out.strDialNumber = "stale";
    out.authType = 9;
    out.initWithCoder(reader);
    EXPECT_EQ(reader.status(), QDataStream::Ok);
    EXPECT_TRUE(reader.atEnd());
    return out;
}

TEST(ConnectDialinfo, CodesAndTravelsAsACopy) {
    const BLConnectDialinfo fresh;
    const BLConnectDialinfo decoded = roundTrip(fresh);
    EXPECT_EQ(decoded, fresh);
    EXPECT_TRUE(decoded.strDNS1.isNull()) << "nil stays nil";

    BLConnectDialinfo full{"*99#", "web", "pass", "internet", "", "10.0.0.1", 2};
    EXPECT_EQ(roundTrip(full), full);
    EXPECT_FALSE(roundTrip(full).strDNS1.isNull()) << "an empty string is not nil";

    const QVariant carried = QVariant::fromValue(full);
    full.strPassword = "changed";
    EXPECT_EQ(carried.value<BLConnectDialinfo>().strPassword, "pass");
}

} // namespace
