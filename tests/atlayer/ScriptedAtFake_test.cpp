#include <functional>
#include <list>
#include <string>

#include <gtest/gtest-spi.h>
#include <gtest/gtest.h>

#include "AtTestSupport.h"

namespace {

using namespace at_test;

int Send(const char* command, const char* prefix = nullptr, int timeoutMs = 1000,
         const std::list<std::string>& finals = kFinals) {
    std::string response;
    return ScriptedAtFake::Callback()(command, prefix, timeoutMs, finals, response);
}

TEST(ScriptedAtFake, DeviationsFailTheTest) {
    // clang-format off
    const struct { const char* name; std::function<void(ScriptedAtFake&)> script; std::function<void()> run; const char* message; } rows[] = {
        {"other command", [](ScriptedAtFake& f) { f.Expect("AT+CSQ\r"); }, [] { EXPECT_EQ(Send("AT+CREG?\r"), 1); }, "sent \"AT+CREG?\\r\", the script expects \"AT+CSQ\\r\""},
        {"script used up", [](ScriptedAtFake&) {}, [] { EXPECT_EQ(Send("AT\r"), 1); }, "sent after the script was used up"},
        {"time limit", [](ScriptedAtFake& f) { f.Expect("AT+CSQ\r").WithTimeout(1000); }, [] { Send("AT+CSQ\r", nullptr, 3000); }, "time limit 3000 ms, the script expects 1000 ms"},
        {"missing prefix", [](ScriptedAtFake& f) { f.Expect("AT+CSQ\r").WithPrefix("+CSQ: "); }, [] { Send("AT+CSQ\r"); }, "prefix null, the script expects \"+CSQ: \""},
        {"unwanted prefix", [](ScriptedAtFake& f) { f.Expect("AT+CFUN=1\r").WithoutPrefix(); }, [] { Send("AT+CFUN=1\r", "+CFUN: "); }, "prefix \"+CFUN: \", the script expects null"},
        {"final results", [](ScriptedAtFake& f) {f.Expect("AT+CMGS=20\r").WithFinals({">", "+CMS ERROR", "ERROR"}); }, [] { Send("AT+CMGS=20\r"); }, "the script expects {\">\", \"+CMS ERROR\", \"ERROR\"}"},
        {"left over", [](ScriptedAtFake& f) { f.Expect("AT+CSQ\r"); }, [] { ScriptedAtFake::Callback(); }, "never sent: \"AT+CSQ\\r\""},
        {"left over at destruction", [](ScriptedAtFake&) {}, [] { ScriptedAtFake inner; inner.Expect("AT+CGMI\r"); }, "1 scripted AT command(s) never sent"},
    };
    // clang-format on
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ScriptedAtFake fake;
        row.script(fake);
        EXPECT_NONFATAL_FAILURE((row.run(), fake.VerifyDone()), row.message);
    }
}

TEST(ScriptedAtFake, CallWithoutFakeFails) {
    EXPECT_NONFATAL_FAILURE(EXPECT_EQ(Send("AT\r"), 1), "no ScriptedAtFake alive");
}

} // namespace
