#pragma once

// Small helpers shared by the command-family and codec tests of this folder.
#include <cstdint>
#include <list>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "ComOperation.h"
#include "ScriptedAtFake.h"

namespace at_test {

// The final results every command family waits for.
inline const std::list<std::string> kFinals = {"OK", "+CME ERROR", "ERROR"};

// One answer line as modems frame it, with the final OK.
inline std::string Answer(const std::string& line) {
    return "\r\n" + line + "\r\n\r\nOK\r\n";
}

inline std::string Hex(const uint8_t* data, int count) {
    static const char* const digits = "0123456789ABCDEF";
    std::string hex;
    for (int i = 0; i < count; ++i)
        hex += std::string{digits[data[i] >> 4], digits[data[i] & 0x0F]};
    return hex;
}

inline std::vector<uint8_t> FromHex(const std::string& hex) {
    std::vector<uint8_t> octets;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        octets.push_back(static_cast<uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return octets;
}

// Several read-back fields as one text, so that a row compares them in one assertion: "a|b|c". Numbers print
// as numbers (also uint8_t), texts as they are, anything else as GoogleTest prints it.
inline void Show(std::ostream& out, const std::string& text) {
    out << text;
}
inline void Show(std::ostream& out, const char* text) {
    out << (text != nullptr ? text : "(null)");
}
inline void Show(std::ostream& out, const std::wstring& text) {
    out << ::testing::PrintToString(text);
}
template <typename T> void Show(std::ostream& out, const T& value) {
    if constexpr (std::is_arithmetic_v<T>)
        out << +value;
    else if constexpr (std::is_enum_v<T>)
        out << static_cast<long long>(value);
    else
        out << ::testing::PrintToString(value);
}
template <typename... T> std::string Fields(const T&... values) {
    std::ostringstream out;
    const char* separator = "";
    ((out << separator, Show(out, values), separator = "|"), ...);
    return out.str();
}

// The serial channel's queued unsolicited reports, taken out of its queue: (kind, text).
using Reports = std::vector<std::pair<int, std::string>>;
inline Reports TakeReports() {
    UnsolicitedReportList* list = nullptr;
    ComOperation::GetInstance()->getUnsoliciteReportList(list);
    Reports reports;
    for (; !list->empty(); list->pop_front()) {
        reports.emplace_back(list->front()->nType, list->front()->strText);
        delete list->front();
    }
    return reports;
}

// A step's command, time limit, prefix and final results, for CheckReads: At("AT+CSQ\r").WithTimeout(1000).
inline ScriptedAtFake::Step At(std::string command) {
    ScriptedAtFake::Step step;
    step.command = std::move(command);
    return step;
}

// Expects the shape's command, with its time limit, prefix and final results, and this answer or failure.
inline ScriptedAtFake::Step& Expect(ScriptedAtFake& fake, const ScriptedAtFake::Step& shape,
                                    std::string answer = ScriptedAtFake::kOk, int failure = 0) {
    ScriptedAtFake::Step& step = fake.Expect(shape.command);
    step = shape;
    step.answer = std::move(answer);
    step.result = failure;
    return step;
}

// The storage selection and deletion of one stored message, as the message family sends them.
inline void ExpectDeletion(ScriptedAtFake& fake, const char* storage, int index,
                           const char* answer = ScriptedAtFake::kOk) {
    const std::string select = std::string("AT+CPMS=\"") + storage + "\"\r";
    Expect(fake, At(select).WithTimeout(3000).WithPrefix("+CPMS: ").WithFinals({"OK", "ERROR", "+CME ERROR"}),
           Answer("+CPMS: 3,20,3,20,3,20"));
    const std::string remove = "AT+CMGD=" + std::to_string(index) + "\r";
    Expect(fake, At(remove).WithTimeout(5000).WithoutPrefix().WithFinals({"OK", "+CMS ERROR", "ERROR"}),
           answer);
}

// Sends the shape's command once per row (or `sends` times, for a read that asks more than once), with the
// row's answer or failure result, and compares what the read gives back. A read of one number (int(int&))
// gives "result|value", the value starting at -1; any other read gives its own text (see Fields).
struct Read {
    std::string answer;
    std::string expected;
    int failure = 0;
};
template <typename F>
void CheckReads(ScriptedAtFake& fake, const ScriptedAtFake::Step& shape, F read,
                const std::vector<Read>& rows, int sends = 1) {
    for (const Read& row : rows) {
        SCOPED_TRACE(ScriptedAtFake::Printable(row.answer));
        for (int i = 0; i < sends; ++i)
            Expect(fake, shape, row.answer, row.failure);
        if constexpr (std::is_invocable_v<F, int&>) {
            int value = -1;
            const int result = read(value);
            EXPECT_EQ(Fields(result, value), row.expected);
        } else {
            EXPECT_EQ(read(), row.expected);
        }
        fake.VerifyDone();
    }
}

// A command family registered with the scripted fake.
template <typename Family> class FamilyTest : public ::testing::Test {
protected:
    void SetUp() override { family.RegisterExecAT(ScriptedAtFake::Callback()); }
    ScriptedAtFake fake;
    Family family;
};

} // namespace at_test
