#include "SimTestSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "SimScenario.h"

namespace modemsim::test {

ModemHarness::ModemHarness(SimState state) : modem(std::move(state)) {
    modem.SetHostConnected(true, now);
}

SimState ModemHarness::Builtin() {
    SimState s;
    std::string error;
    if (!LoadScenario("", s, error))
        std::abort();
    return s;
}

std::string ModemHarness::Send(const std::string& bytes) {
    modem.Receive(bytes, now);
    modem.Advance(now);
    return modem.TakeOutput();
}

std::string ModemHarness::At(const std::string& command) {
    return Send(command + "\r");
}

void ModemHarness::ExpectAnswers(std::initializer_list<std::pair<const char*, const char*>> exchanges) {
    for (const auto& [command, answer] : exchanges)
        EXPECT_EQ(At(command), answer) << command;
}

std::string ModemHarness::Run(int ms) {
    TimePoint target = now + std::chrono::milliseconds(ms);
    for (;;) {
        auto wake = modem.NextWake();
        if (!wake || *wake > target)
            break;
        now = std::max(now, *wake);
        modem.Advance(now);
    }
    now = target;
    modem.Advance(now);
    return modem.TakeOutput();
}

} // namespace modemsim::test
