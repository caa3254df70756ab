#include <QDir>
#include <QTemporaryDir>

#include "Contacts/LocalPhoneBook.h"
#include "Contacts/PhonebookCopy.h"
#include "Contacts/VCard.h"
#include "Contacts/VCardFile.h"
#include "DamagedFile.h"
#include "TempHome.h"

namespace {

// "name|label:number,...|email,...|note"
std::string Summary(const LocalContact& contact) {
    QStringList numbers;
    for (const LocalContact::Number& entry : contact.numbers)
        numbers.append(entry.label + u':' + entry.number);
    return QStringList{contact.name, numbers.join(u','), contact.emails.join(u','), contact.note}
        .join(u'|')
        .toStdString();
}

TEST(VCard, ReadsWhatPhonesAndProgramsWrite) {
    // clang-format off
    struct Row { const char* what; QByteArray file; std::vector<std::string> contacts; };
    const Row rows[] = {
        {"3.0 folded, several numbers", "BEGIN:VCARD\r\nVERSION:3.0\r\nN:Schmidt;Anna;;;\r\nFN:Anna Maria\r\n  Schmidt\r\nTEL;TYPE=CELL,VOICE:+49 170 1234567\r\nTEL;TYPE=HOME:030 123456\r\nTEL;TYPE=work;TYPE=pref:+49 30 9876\r\nEMAIL;TYPE=INTERNET:anna@example.org\r\nEND:VCARD\r\n",
         {"Anna Maria Schmidt|mobile:+49 170 1234567,home:030 123456,work:+49 30 9876|anna@example.org|"}},
        {"2.1 quoted-printable, soft breaks, ISO-8859-1", "BEGIN:VCARD\nVERSION:2.1\nN;CHARSET=ISO-8859-1;ENCODING=QUOTED-PRINTABLE:M=FCller;J=\n=FCrgen;;;\nTEL;CELL;VOICE:0170111\nNOTE;CHARSET=UTF-8;QUOTED-PRINTABLE:Gr=C3=BC=C3=9Fe=0D=0Aaus =\nK=C3=B6ln\nEND:VCARD\n",
         {"J\xC3\xBCrgen M\xC3\xBCller|mobile:0170111||Gr\xC3\xBC\xC3\x9F" "e\naus K\xC3\xB6ln"}},
        {"4.0 tel URIs, quoted types, groups", "BEGIN:VCARD\r\nVERSION:4.0\r\nFN:Bo\r\nTEL;VALUE=uri;TYPE=\"cell,voice\":tel:+1-555-555-0100;ext=12\r\nitem1.TEL;VALUE=uri:tel:+1-555-555-0199\r\nitem1.X-ABLabel:_$!<Partner>!$_\r\nEND:VCARD\r\n",
         {"Bo|mobile:+1-555-555-0100,partner:+1-555-555-0199||"}},
        {"escapes; name from N; cards without anything", "BEGIN:VCARD\nVERSION:3.0\nN:\xCE\xA0\xCE\xB1\xCF\x80\xCE\xB1\xCE\xB4\xCF\x8C\xCF\x80\xCE\xBF\xCF\x85\xCE\xBB\xCE\xBF\xCF\x82;\xCE\x93\xCE\xB9\xCF\x8E\xCF\x81\xCE\xB3\xCE\xBF\xCF\x82;;;\nNOTE:a\\, b\\; c\\\\d\\ne\nEND:VCARD\nBEGIN:VCARD\nVERSION:3.0\nPHOTO;ENCODING=b;TYPE=JPEG:/9j/4AAQ\nEND:VCARD\n",
         {"\xCE\x93\xCE\xB9\xCF\x8E\xCF\x81\xCE\xB3\xCE\xBF\xCF\x82 \xCE\xA0\xCE\xB1\xCF\x80\xCE\xB1\xCE\xB4\xCF\x8C\xCF\x80\xCE\xBF\xCF\x85\xCE\xBB\xCE\xBF\xCF\x82|||a, b; c\\d\ne"}},
        {"Cyrillic, CJK, emoji", "\xEF\xBB\xBF" "BEGIN:VCARD\nVERSION:3.0\nFN:\xD0\x90\xD0\xBD\xD0\xBD\xD0\xB0\nTEL:+79161234567\nEND:VCARD\nBEGIN:VCARD\nVERSION:3.0\nFN:\xE7\x8E\x8B\xE5\xB0\x8F\xE6\x98\x8E \xF0\x9F\x98\x80\nTEL;TYPE=cell:+8613800138000\nEND:VCARD\n",
         {"\xD0\x90\xD0\xBD\xD0\xBD\xD0\xB0|:+79161234567||", "\xE7\x8E\x8B\xE5\xB0\x8F\xE6\x98\x8E \xF0\x9F\x98\x80|mobile:+8613800138000||"}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        const VCard::ReadResult read = VCard::read(row.file);
        ASSERT_TRUE(read.ok()) << read.message().toStdString();
        std::vector<std::string> got;
        for (const LocalContact& contact : read.contacts)
            got.push_back(Summary(contact));
        EXPECT_EQ(got, row.contacts);
    }
}

TEST(VCard, WrittenFilesReadBackTheSame) {
    // clang-format off
    const LocalContact anna{"a-1", "Anna, \"die\"; Schmidt\\", {{"mobile", "+491701234567"}, {"Partner", "+4930123"}, {"", "112"}, {"work", "030 1234;55"}}, {"anna@example.org"}, "first line\nsecond, with; marks"};
    const LocalContact long_{"b-2", QString::fromUtf8("\xE7\x8E\x8B\xF0\x9F\x98\x80").repeated(20), {{"home", "+8613800138000"}}, {}, {}};
    // clang-format on
    for (const VCard::Version version : {VCard::Version::V3, VCard::Version::V4}) {
        const QByteArray file = VCard::write({anna, long_}, version);
        for (const QByteArray& line : file.split('\n')) {
            EXPECT_LE(line.size(), 76) << line.toStdString(); // 75 and the CR
            EXPECT_TRUE(QString::fromUtf8(line).toUtf8() == line) << "a character split at a fold";
        }
        const VCard::ReadResult read = VCard::read(file);
        ASSERT_TRUE(read.ok()) << read.message().toStdString();
        ASSERT_EQ(read.contacts.size(), 2);
        EXPECT_EQ(Summary(read.contacts[0]), Summary(anna));
        EXPECT_EQ(read.contacts[0].uid, anna.uid);
        EXPECT_EQ(Summary(read.contacts[1]), Summary(long_));
    }
}

TEST(VCard, HostileFilesAreRefusedWithTheLine) {
    const QByteArray card = "BEGIN:VCARD\nVERSION:3.0\n";
    // clang-format off
    struct Row { QByteArray file; int line; const char* error; };
    const Row rows[] = {
        {QByteArray(VCard::kMaxFileBytes + 1, 'a'), 0, "larger than 16 MiB"},
        {card + "FN:\xC3\x28\nEND:VCARD\n", 3, "FN is not valid UTF-8"},
        {card + "FN;CHARSET=X-NOWHERE:a\nEND:VCARD\n", 3, "unknown character set"},
        {card + "NOTE;ENCODING=QUOTED-PRINTABLE:a=ZZ\nEND:VCARD\n", 3, "broken quoted-printable"},
        {card + "NOTE;ENCODING=QUOTED-PRINTABLE:a=4\nEND:VCARD\n", 3, "broken quoted-printable"},
        {card + "FN:A\n", 1, "no END:VCARD"},
        {card + "FN:A\nBEGIN:VCARD\nEND:VCARD\nEND:VCARD\n", 4, "inside the card of line 1"},
        {"FN:A\nTEL:1\n", 1, "FN outside a card"},
        {card + "FN:A\nEND:VCARD\nEND:VCARD\n", 5, "END outside a card"},
        {card + "just text\nEND:VCARD\n", 3, "not a vCard line"},
        {card + "NOTE:" + QByteArray(VCard::kMaxLineBytes, 'x') + "\nEND:VCARD\n", 3, "longer than 1048576 bytes"},
        {card + "FN:A\nNOTE:" + QByteArray(LocalPhoneBook::kMaxNoteLength + 1, 'x') + "\nEND:VCARD\n", 1, "the note is 16385 characters"},
        {card + QByteArray("TEL:1\n").repeated(LocalPhoneBook::kMaxNumbers + 1) + "END:VCARD\n", 35, "more than 32 numbers"},
        {QByteArray("BEGIN:VCARD\nTEL:1\nEND:VCARD\n").repeated(LocalPhoneBook::kMaxContacts + 1), 30001, "more than 10000 cards"},
        {"\r\n\r\n", 0, "no vCard in the file"},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.error);
        const VCard::ReadResult read = VCard::read(row.file);
        EXPECT_TRUE(read.contacts.isEmpty());
        EXPECT_EQ(read.errorLine, row.line);
        EXPECT_TRUE(read.error.contains(QLatin1String(row.error))) << read.message().toStdString();
    }
}

TEST(LocalPhoneBook, SearchAndNameForNumber) {
    LocalPhoneBook book(QStringLiteral("/nonexistent/book.plist"));
    book.add({{}, "Anna Schmidt", {{"mobile", "+49 170 1234567"}}, {}, {}});
    book.add({{}, "Bernd", {{"", "030 555 12"}, {"work", "+4989777"}}, {}, {}});
    book.add({{}, QString::fromUtf8("\xD0\x90\xD0\xBD\xD0\xBD\xD0\xB0"), {{"", "+79161234567"}}, {}, {}});
    // clang-format off
    struct Row { const char* text; QList<qsizetype> found; const char* number; const char* name; };
    const Row rows[] = {
        {"schmidt", {0}, "01701234567", "Anna Schmidt"},
        {"170-123", {0}, "+491701234567", "Anna Schmidt"},
        {"5 551", {1}, "+493055512", "Bernd"},
        {"\xD0\xB0\xD0\xBD\xD0\xBD", {2}, "+79161234567", "\xD0\x90\xD0\xBD\xD0\xBD\xD0\xB0"},
        {"nobody", {}, "+4930999", ""},
        {"", {0, 1, 2}, "", ""},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.text);
        EXPECT_EQ(book.search(QString::fromUtf8(row.text)), row.found);
        EXPECT_EQ(book.nameForNumber(QString::fromUtf8(row.number), "DE").toStdString(), row.name);
    }
}

// An import merges by uid and by number, all or nothing; a damaged book is kept aside, never overwritten.
TEST(LocalPhoneBook, ImportMergesAndKeepsADamagedFileAside) {
    QTemporaryDir folder;
    const QString path = folder.filePath("LocalPhoneBook.plist");
    const QString vcf = folder.filePath("in.vcf");
    TempHome::writeFile(path, "<?xml version=\"1.0\"?><plist><array><dict><key>Name</key>");
    DamagedFile::setNoticeStream(nullptr);
    const auto import = [&](const QByteArray& text) {
        TempHome::writeFile(vcf, text);
        LocalPhoneBook book(path);
        book.load();
        return VCardFile::importInto(book, vcf, "DE");
    };

    VCardFile::Import first = import("BEGIN:VCARD\nFN:Anna\nTEL:+491701234567\nEND:VCARD\n"
                                     "BEGIN:VCARD\nEMAIL:x\nEND:VCARD\nBEGIN:VCARD\nEND:VCARD\n");
    ASSERT_TRUE(first.ok()) << first.error.toStdString();
    EXPECT_EQ(first.count.added, 2);
    EXPECT_EQ(first.refused, 1);
    const QStringList kept = QDir(folder.path()).entryList({"LocalPhoneBook.plist.damaged-*"}, QDir::Files);
    ASSERT_EQ(kept.size(), 1);

    const VCardFile::Import second =
        import("BEGIN:VCARD\nFN:Anna S.\nTEL:01701234567\nTEL:+4930111\nEND:VCARD\n");
    EXPECT_EQ(second.count.merged, 1);
    const VCardFile::Import broken = import("BEGIN:VCARD\nFN:Carl\nTEL:1\nEND:VCARD\nBEGIN:VCARD\nFN:\xFF\n");
    EXPECT_EQ(broken.error,
              vcf + ": line 6: FN is not valid UTF-8 and names no other CHARSET; nothing was imported");

    LocalPhoneBook book(path);
    ASSERT_EQ(book.load(), LocalPhoneBook::LoadResult::Ok);
    ASSERT_EQ(book.contacts().size(), 2);
    EXPECT_EQ(Summary(book.contacts()[0]), "Anna|:+491701234567,:+4930111||");
    EXPECT_TRUE(TempHome::readFile(folder.filePath(kept.first())).endsWith("<key>Name</key>"));
    DamagedFile::setNoticeStream(stderr);
}

TEST(PhonebookCopy, ToTheSimWithinItsLimits) {
    const LocalContact anna{{}, "Anna Schmidt", {{"mobile", "+491701234567"}, {"", "+49301234567"}}, {}, {}};
    const LocalContact bo{{}, "Bo", {{"", "+1234567890123456789012"}}, {}, {}};
    const QList<BLPbItem> there{{kSimStore, "Old", "030 1234567", 1}};
    using Fate = PhonebookCopy::Entry::Fate;
    // clang-format off
    struct Row { const char* what; QList<LocalContact> contacts; int maxName; int free; std::vector<std::pair<std::string, Fate>> entries; };
    const Row rows[] = {
        {"one entry per number, labelled", {anna}, 0, 5, {{"Anna Schmidt (mobile)", Fate::Copy}, {"Anna Schmidt (2)", Fate::AlreadyThere}}},
        {"name cut before the label", {anna}, 14, 5, {{"Anna (mobile)", Fate::NameCut}, {"Anna Schmi (2)", Fate::AlreadyThere}}},
        {"label dropped when nothing else fits", {anna}, 6, 5, {{"Anna S", Fate::NameCut}, {"An (2)", Fate::AlreadyThere}}},
        {"not a number", {{{}, "Info", {{"", "Vodafone"}}, {}, {}}}, 0, 5, {{"Info", Fate::NotANumber}}},
        {"full", {bo, anna}, 0, 1, {{"Bo", Fate::NumberTooLong}, {"Anna Schmidt (mobile)", Fate::Copy}, {"Anna Schmidt (2)", Fate::AlreadyThere}}},
        {"full after the first", {anna, {{}, "Cy", {{"", "+4917099"}}, {}, {}}}, 0, 1, {{"Anna Schmidt (mobile)", Fate::Copy}, {"Anna Schmidt (2)", Fate::AlreadyThere}, {"Cy", Fate::Full}}},
    };
    // clang-format on
    for (const Row& row : rows) {
        SCOPED_TRACE(row.what);
        std::vector<std::pair<std::string, Fate>> got;
        for (const PhonebookCopy::Entry& entry :
             PhonebookCopy::toPhonebook(row.contacts, there, row.maxName, 20, row.free, "DE"))
            got.emplace_back(entry.name.toStdString(), entry.fate);
        EXPECT_EQ(got, row.entries);
    }
    // And back: the labelled entries are one contact again.
    const QList<LocalContact> back = PhonebookCopy::toBook({{kSimStore, "Anna (mobile)", "+491", 1},
                                                            {kSimStore, "Anna (2)", "+492", 2},
                                                            {kSimStore, "", "+493", 3}});
    ASSERT_EQ(back.size(), 2);
    EXPECT_EQ(Summary(back[0]), "Anna|mobile:+491,:+492||");
    EXPECT_EQ(Summary(back[1]), "+493|:+493||");
}

} // namespace
