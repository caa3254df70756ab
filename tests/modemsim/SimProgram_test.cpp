// The dialtone-modemsim program on its ptys: the ready line and the links, AT over the port as the host
// opens it, closing and reopening, the dial port, and the control socket: events, unplug, plug and quit.

#include <csignal>
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "SimTestSupport.h"

namespace modemsim::test {
namespace {

using namespace std::chrono_literals;

bool Exists(const std::string& path) {
    struct stat st {};
    return lstat(path.c_str(), &st) == 0;
}

#define REQUIRE_PROGRAM(sim)                                                                                 \
    if (std::string(DIALTONE_MODEMSIM).empty()) {                                                            \
        GTEST_SKIP() << "the program was not built";                                                         \
    }                                                                                                        \
    ASSERT_TRUE(sim.Started())

TEST(SimProgramTest, ReadyLineLinksAtPortAndControl) {
    SimProcess sim;
    REQUIRE_PROGRAM(sim);
    const nlohmann::json& ready = sim.Ready();
    EXPECT_EQ(ready["at_link"], sim.DevDir() + "/cu.VELDeviceInterface3");
    EXPECT_EQ(ready["dial_link"], sim.DevDir() + "/cu.VELMobileConnector1");
    EXPECT_EQ(ready["control"], sim.DevDir() + "/modemsim.sock");
    char target[256] = {};
    ASSERT_GT(readlink(ready["at_link"].get<std::string>().c_str(), target, sizeof target - 1), 0);
    EXPECT_EQ(target, ready["at"].get<std::string>());

    HostPort port(ready["at_link"]);
    ASSERT_TRUE(port.IsOpen());
    EXPECT_FALSE(HostPort(ready["at_link"]).IsOpen()); // held by the first opener
    port.Write("ATE0\r");
    EXPECT_EQ(port.ReadUntil("OK\r\n", 2s), "ATE0\r\r\nOK\r\n");
    port.Write("AT+CGMI\r");
    EXPECT_EQ(port.ReadUntil("OK\r\n", 2s), "\r\nSIMULATED\r\n\r\nOK\r\n");

    // The host closes the port and opens it again: the stick is still there.
    port.Close();
    HostPort again(ready["at_link"]);
    ASSERT_TRUE(again.IsOpen());
    again.Write("AT\r");
    EXPECT_EQ(again.ReadUntil("OK\r\n", 2s), "\r\nOK\r\n");

    // Control commands reach the modem behind the port; what they refuse is checked in-process.
    // clang-format off
    struct Row { const char* control; const char* poll; }; // poll: what the next "at" brings
    const Row rows[] = {
        {"sms +4917012345 Hello there", "\r\n+CMTI: \"SM\",4\r\n\r\nOK\r\n"}, {"ring +4930123456", "\r\nRING\r\n\r\nOK\r\n"},
        {"hangup", "\r\nNO CARRIER\r\n\r\nOK\r\n"}, {"signal 7", "\r\nOK\r\n"},
    };
    // clang-format on
    for (const Row& row : rows) {
        nlohmann::json reply = sim.Control(row.control);
        EXPECT_EQ(reply.value("ok", false), true) << row.control << ": " << reply.dump();
        again.Write("at\r");
        EXPECT_EQ(again.ReadUntil("OK\r\n", 2s), row.poll) << row.control;
    }
    again.Write("AT+CSQ\r");
    EXPECT_EQ(again.ReadUntil("OK\r\n", 2s), "\r\n+CSQ: 7,99\r\n\r\nOK\r\n");
    nlohmann::json dump = sim.Control("dump");
    EXPECT_EQ(dump["pin"]["state"], "READY");
    EXPECT_EQ(dump["sms"]["storages"]["SM"]["used"], 4);
    EXPECT_EQ(dump["commands"].back(), "AT+CSQ");
}

TEST(SimProgramTest, DialPortConnectsUntilClosed) {
    SimProcess sim;
    REQUIRE_PROGRAM(sim);
    {
        HostPort dial(sim.Ready()["dial_link"]);
        ASSERT_TRUE(dial.IsOpen());
        dial.Write("AT\r");
        EXPECT_NE(dial.ReadUntil("OK\r\n", 2s).find("OK"), std::string::npos);
        dial.Write("ATD*99#\r");
        EXPECT_NE(dial.ReadUntil("CONNECT\r\n", 2s).find("CONNECT"), std::string::npos);
        dial.Write("~\x7f\x23~");
        EXPECT_TRUE(WaitFor([&] { return sim.Control("dump")["data"]["bytes_in"] == 4; }, 2s));
        EXPECT_EQ(sim.Control("dump")["data"]["connected"], true);
    }
    EXPECT_TRUE(WaitFor([&] { return sim.Control("dump")["data"]["connected"] == false; }, 2s));
}

TEST(SimProgramTest, UnplugRemovesThePortsAndPlugBringsThemBack) {
    SimProcess sim({"--scenario", "pin-locked"});
    REQUIRE_PROGRAM(sim);
    std::string atLink = sim.Ready()["at_link"];
    std::string dialLink = sim.Ready()["dial_link"];
    HostPort port(atLink);
    ASSERT_TRUE(port.IsOpen());
    port.Write("AT+CPIN=\"1234\"\r");
    EXPECT_NE(port.ReadUntil("OK\r\n", 2s).find("OK"), std::string::npos);

    EXPECT_EQ(sim.Control("unplug")["ok"], true);
    EXPECT_FALSE(Exists(atLink));
    EXPECT_FALSE(Exists(dialLink));
    EXPECT_TRUE(port.WaitHangup(2s));
    EXPECT_EQ(sim.Control("unplug")["ok"], false);
    port.Close();

    nlohmann::json plugged = sim.Control("plug");
    ASSERT_EQ(plugged["ok"], true);
    EXPECT_TRUE(Exists(atLink));
    EXPECT_TRUE(Exists(dialLink));
    HostPort fresh(atLink);
    ASSERT_TRUE(fresh.IsOpen());
    fresh.Write("AT+CPIN?\r"); // power was lost: the SIM asks for its PIN again, echo is on again
    EXPECT_EQ(fresh.ReadUntil("OK\r\n", 2s), "AT+CPIN?\r\r\n+CPIN: SIM PIN\r\n\r\nOK\r\n");
}

TEST(SimProgramTest, QuitAndSignalsCleanUp) {
    // clang-format off
    struct Row { bool quitCommand; int signal; };
    const Row rows[] = {{true, 0}, {false, SIGTERM}, {false, SIGINT}};
    // clang-format on
    for (const Row& row : rows) {
        SimProcess sim;
        REQUIRE_PROGRAM(sim);
        std::string atLink = sim.Ready()["at_link"];
        std::string control = sim.Ready()["control"];
        int status = -1;
        if (row.quitCommand) {
            EXPECT_EQ(sim.Control("quit")["ok"], true);
            status = sim.WaitExit(5s);
        } else {
            status = sim.Terminate(row.signal);
        }
        EXPECT_EQ(status, 0) << row.signal;
        EXPECT_FALSE(Exists(atLink)) << row.signal;
        EXPECT_FALSE(Exists(control)) << row.signal;
    }
}

} // namespace
} // namespace modemsim::test
