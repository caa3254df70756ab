// What the tool refuses before the modem is asked: malformed SIM codes and text that would end an AT
// parameter or command early.

#include <chrono>
#include <string>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <termios.h>
#include <unistd.h>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "CliTestSupport.h"

namespace {

using clitest::Outcome;
using clitest::SimulatedModem;
using nlohmann::json;

struct Refusal {
    std::vector<std::string> args;
    const char* says;            // part of the message on standard error
    int status = 2;              // -1: any failure
    const char* input = nullptr; // standard input (none: /dev/null)
};

template <std::size_t N> void ExpectRefused(const SimulatedModem& modem, const Refusal (&rows)[N]) {
    for (const Refusal& row : rows) {
        SCOPED_TRACE(row.args.back());
        const Outcome outcome = row.input ? modem.run(row.args, row.input) : modem.run(row.args);
        if (row.status < 0)
            EXPECT_NE(outcome.status, 0);
        else
            EXPECT_EQ(outcome.status, row.status) << outcome.err;
        EXPECT_EQ(outcome.out, "");
        EXPECT_NE(outcome.err.find(row.says), std::string::npos) << outcome.err;
    }
}

bool Sent(const json& dump, const std::string& part) {
    for (const json& command : dump["commands"]) {
        if (command.get<std::string>().find(part) != std::string::npos)
            return true;
    }
    return false;
}

TEST(DialtoneInputs, PinTyposCostNoAttemptAndTheRightPinStillWorks) {
    SimulatedModem modem("pin-locked");
    ASSERT_TRUE(modem.ready());
    // clang-format off
    const Refusal rows[] = {
        {{"pin", "verify", "abcd"}, "PIN: a PIN has 4 to 8 digits, nothing else"},
        {{"pin", "verify", "12"}, "a PIN has 4 to 8 digits, not 2"},
        {{"pin", "verify", ""}, "a PIN has 4 to 8 digits, and none was given"},
        {{"pin", "verify", "123456789"}, "a PIN has 4 to 8 digits, not 9"},
        {{"pin", "enable", "12ab"}, "a PIN has 4 to 8 digits"},
        {{"pin", "change", "1234", "12\";+CFUN=0;\""}, "NEW: a PIN has 4 to 8 digits"},
        {{"pin", "puk", "1234567", "1234"}, "PUK: a PUK has 8 digits, not 7"},
        {{"pin", "verify", "--pin-stdin"}, "PIN: a PIN has 4 to 8 digits, nothing else", 2, "12ab\n"},
        {{"pin", "puk", "--codes-stdin"}, "NEWPIN: a PIN has 4 to 8 digits, not 3", 2, "12345678\n123\n"},
        {{"pin", "change", "--codes-stdin"}, "standard input ended before the NEW", 2, "1234\n"},
        {{"pin", "verify", "--pin-stdin", "1234"}, "either as arguments or with --pin-stdin"},
        {{"request", "MESSAGE_PIN_ENABLE", "[1,2]"}, "takes a BLPINEnableInfo object"},
    };
    // clang-format on
    ExpectRefused(modem, rows);
    const json dump = modem.dump();
    EXPECT_EQ(dump["pin"]["pin_left"], 3);
    EXPECT_FALSE(Sent(dump, "+CPIN=") || Sent(dump, "+CLCK=") || Sent(dump, "+CPWD=")) << dump["commands"];

    const Outcome right = modem.run({"pin", "verify", "--pin-stdin"}, "1234\r\n");
    EXPECT_EQ(right.status, 0) << right.err;
    EXPECT_EQ(modem.dump()["pin"]["state"], "READY");
}

// Typed at a terminal, the PIN is asked for without echo, and the echo is back once it is read.
TEST(DialtoneInputs, PinTypedAtATerminalIsNotEchoed) {
    SimulatedModem modem("pin-locked");
    ASSERT_TRUE(modem.ready());
    const int master = posix_openpt(O_RDWR | O_NOCTTY);
    ASSERT_TRUE(master >= 0 && grantpt(master) == 0 && unlockpt(master) == 0);
    const std::string terminal = ptsname(master);
    const int watch = open(terminal.c_str(), O_RDWR | O_NOCTTY); // keeps the terminal and shows its settings
    ASSERT_GE(watch, 0);
    const auto echoing = [watch] {
        termios settings{};
        return tcgetattr(watch, &settings) == 0 && (settings.c_lflag & ECHO) != 0;
    };
    Outcome verified;
    std::thread user([&] {
        verified = clitest::RunDialtone({"--dev-dir", modem.devDir.path, "pin", "verify"}, modem.home.path, {},
                                        terminal);
    });
    for (int tick = 0; tick < 1000 && echoing(); ++tick)
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    EXPECT_FALSE(echoing()) << "the prompt turns the echo off";
    ASSERT_EQ(write(master, "1234\n", 5), 5);
    user.join();

    EXPECT_EQ(verified.status, 0) << verified.err;
    EXPECT_NE(verified.err.find("PIN: "), std::string::npos) << verified.err;
    EXPECT_TRUE(echoing()) << "the echo is back";
    fcntl(master, F_SETFL, O_NONBLOCK);
    char shown[256];
    const ssize_t n = read(master, shown, sizeof shown);
    EXPECT_EQ(std::string(shown, n > 0 ? static_cast<size_t>(n) : 0).find("1234"), std::string::npos);
    EXPECT_EQ(modem.dump()["pin"]["state"], "READY");
    close(watch);
    close(master);
}

TEST(DialtoneInputs, TextThatWouldAppendCommandsNeverReachesTheModem) {
    SimulatedModem modem("default");
    ASSERT_TRUE(modem.ready());
    const std::string injected = "x\";+CMGD=1,4;+CFUN=0;\"";
    // clang-format off
    const Refusal rows[] = {
        {{"profiles", "add", "Evil", "inet" + injected}, "the APN holds a double quote"},
        {{"profiles", "add", "Evil", "inet", "--user", "me\nnoauth"}, "the user name holds a control character"},
        {{"contacts", "add", "Ann;+CFUN=0", "+4930123456"}, "the name holds a semicolon"},
        {{"ussd", "*100#" + injected}, "the USSD text holds a double quote"},
        {{"ussd", "*100#", "--reply", "1\r"}, "the reply holds a control character"},
        {{"sms", "sc", "+49" + injected}, "", -1},
    };
    // clang-format on
    ExpectRefused(modem, rows);
    const json dump = modem.dump();
    EXPECT_FALSE(Sent(dump, "CFUN=0") || Sent(dump, "CMGD=1,4")) << dump["commands"];
    EXPECT_TRUE(modem.run({"profiles", "list"}).out.find("Evil") == std::string::npos);
}

} // namespace
