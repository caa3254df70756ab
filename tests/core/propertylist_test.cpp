#include "PropertyList.h"
#include "TempHome.h"

#include <QDateTime>
#include <QDebug>
#include <QDir>
#include <QTimeZone>

#include <plist/plist.h>

#include <cstdlib>

namespace {

QVariantMap sampleSettings() {
    // clang-format off
    const QVariantMap day{{"SENT", QVariant::fromValue<quint64>(18446744073709551615ULL)}, {"RECEIVED", QVariant::fromValue<quint64>(9223372036854775808ULL)},
                          {"SECONDS", QVariant::fromValue<qint64>(-5)}, {"DATE", QDateTime(QDate(2024, 5, 1), QTime(12, 3, 4), QTimeZone::utc())}};
    return {{"default APN info", QVariantMap{{"if setDefault", "TRUE"}, {"default IMSI", "262011234567890"}}}, {"SMS_VP", QVariant::fromValue<qint64>(167)},
            {"SOUND_CONNECT", "FALSE"}, {"NAME", QString::fromUtf8("Grüße <&> \"quoted\" 你好")}, {"ON", true}, {"RATIO", 0.25},
            {"BLOB", QByteArray("\x00\x01\xff", 3)}, {"DAYS", QVariantList{day, QVariantList{}, QVariantMap{}}}, {"", "empty key"}};
    // clang-format on
}

// The tree with every value's type, as QDebug prints it: integers come back as 64-bit values.
std::string tree(const QVariant& value) {
    QString text;
    QDebug(&text) << value;
    return text.toStdString();
}

// The settings as a binary list, converted by libplist.
QByteArray binarySettings() {
    const QByteArray xml = PropertyList::toXml(sampleSettings());
    plist_t root = nullptr;
    plist_from_xml(xml.constData(), static_cast<uint32_t>(xml.size()), &root);
    EXPECT_NE(root, nullptr);
    char* bin = nullptr;
    uint32_t length = 0;
    plist_to_bin(root, &bin, &length);
    plist_free(root);
    const QByteArray binary(bin, length);
    std::free(bin);
    return binary;
}

// Written as XML and read back; the same settings in a binary list (as libplist writes them) read alike.
TEST(PropertyList, EveryStoredTypeRoundTripsThroughAFile) {
    TempHome home;
    const QString path = home.path() + "/settings.plist";
    const QVariantMap settings = sampleSettings();
    ASSERT_TRUE(PropertyList::write(path, settings));
    EXPECT_EQ(tree(PropertyList::readMap(path)), tree(settings));

    // Counters above 2^63 are written as unsigned XML integers, not as negative numbers.
    const QByteArray xml = TempHome::readFile(path);
    for (const char* text :
         {"<integer>18446744073709551615</integer>", "<integer>9223372036854775808</integer>",
          "<integer>-5</integer>", "<date>2024-05-01T12:03:04Z</date>"})
        EXPECT_TRUE(xml.contains(text)) << text;

    const QByteArray binary = binarySettings();
    ASSERT_TRUE(binary.startsWith("bplist00"));
    TempHome::writeFile(path, binary);
    EXPECT_EQ(tree(PropertyList::readMap(path)), tree(settings)) << "binary";
}

// A binary list from raw objects, with one-byte offsets and references.
QByteArray binaryList(const QList<QByteArray>& objects) {
    QByteArray out = "bplist00";
    QByteArray offsets;
    for (const QByteArray& object : objects) {
        offsets.append(static_cast<char>(out.size()));
        out.append(object);
    }
    const auto tableAt = static_cast<char>(out.size());
    out.append(offsets);
    out.append(QByteArray(6, '\0') + "\x01\x01");
    out.append(QByteArray(7, '\0') + static_cast<char>(objects.size()));
    out.append(QByteArray(8, '\0'));
    out.append(QByteArray(7, '\0') + tableAt);
    return out;
}

// Broken and hostile files are refused and read as nothing; binary lists whose references, counts and
// offsets point outside the objects, or that loop, among them.
TEST(PropertyList, BrokenAndHostileFilesReadAsNothing) {
    TempHome home;
    const QByteArray xml = PropertyList::toXml(sampleSettings());
    const QByteArray binary = binarySettings();
    QList<QByteArray> chain; // arrays that each hold the next one twice (2^40 visits)
    for (char i = 1; i <= 40; ++i)
        chain.append(QByteArray("\xA2") + i + i);
    chain.append("\x09");

    const QString path = home.path() + "/broken.plist";
    // clang-format off
    const QByteArray rows[] = {
        "", "   \n", "not a property list", "<?xml version=\"1.0\"?><plist version=\"1.0\"><dict><key>SMS_VP</key><integer>1",
        "<plist><array><string>unterminated", "bplist00", "bplist00\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff\xff",
        QByteArray(4096, '\0'),
        binaryList({QByteArray("\xA1\x00", 2)}),                                  // an array that holds itself
        binaryList(chain),
        binaryList({QByteArray("\xA1\x05", 2)}),                                  // reference to a missing object
        binaryList({QByteArray("\x5F\x10\xFF" "abc", 6)}),                        // string longer than the data
        binaryList({QByteArray("\x6F\x13\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFF", 10)}), // huge UTF-16 count
        binaryList({QByteArray("\xD1\x01\x01", 3), QByteArray("\x10\x01", 2)}),   // a key that is not a string
        binaryList({QByteArray("\x14" "12345678", 9)}),                            // 16-byte integer cut short
        binaryList({QByteArray("\x0F", 1)}),                                       // fill byte
    };
    // clang-format on
    for (const QByteArray& bytes : rows) {
        SCOPED_TRACE(bytes.left(40).toHex().toStdString());
        EXPECT_FALSE(PropertyList::fromData(bytes).isValid());
        TempHome::writeFile(path, bytes);
        EXPECT_TRUE(PropertyList::readMap(path).isEmpty());
        EXPECT_TRUE(PropertyList::readList(path).isEmpty());
    }
    // A key holding a NUL byte is an ordinary key here.
    // clang-format off
    const QVariant nulKey = PropertyList::fromData(binaryList({QByteArray("\xD1\x01\x02", 3), QByteArray("\x53" "a\0b", 4), QByteArray("\x10\x07", 2)}));
    // clang-format on
    EXPECT_EQ(nulKey.toMap(), (QVariantMap{{QString::fromLatin1("a\0b", 3), 7}}));
    // Every cut of a valid file, XML or binary, either reads as nothing or reads without crashing.
    for (const QByteArray* whole : {&xml, &binary})
        for (qsizetype cut = 0; cut < whole->size(); cut += (whole == &binary ? 1 : 5))
            PropertyList::fromData(whole->left(cut));
    EXPECT_FALSE(PropertyList::read(home.path() + "/missing.plist").isValid());
    // A file of the other kind of root reads as an empty map or list.
    ASSERT_TRUE(PropertyList::write(path, QVariantList{1, 2}));
    EXPECT_TRUE(PropertyList::readMap(path).isEmpty());
    EXPECT_EQ(PropertyList::readList(path).size(), 2);
}

TEST(PropertyList, WriteReplacesTheFileWholeOrNotAtAll) {
    TempHome home;
    const QString path = home.path() + "/list.plist";
    ASSERT_TRUE(PropertyList::write(path, QVariantList{"first"}));
    ASSERT_TRUE(PropertyList::write(path, QVariantList{"second", "third"}));
    EXPECT_EQ(PropertyList::readList(path), (QVariantList{"second", "third"}));
    EXPECT_EQ(QDir(home.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"list.plist"});

    // A folder where the file should be, or a missing folder: the write fails and nothing is left over.
    QDir().mkpath(home.path() + "/taken.plist");
    EXPECT_FALSE(PropertyList::write(home.path() + "/taken.plist", QVariantMap{{"a", 1}}));
    EXPECT_FALSE(PropertyList::write(home.path() + "/no/such/folder/x.plist", QVariantMap{{"a", 1}}));
    EXPECT_EQ(QDir(home.path()).entryList(QDir::Files | QDir::Hidden), QStringList{"list.plist"});
}

} // namespace
