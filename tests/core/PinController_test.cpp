#include "SimulatedLink.h"

#include "Pin/PinController.h"

#include <optional>

namespace {

enum class Try { Verify, Puk, RequestOn, RequestOff, Change };

// state: the SIM state read after the try, -1 when nothing was sent, so nothing read; attempts: PIN attempts
// left after it (PUK attempts while the SIM wants the PUK)
// clang-format off
struct Step { Try what; QString code; QString newCode; int result; int state; int attempts; };
// clang-format on

void StartTry(PinController& pin, const Step& step, PinController::Done done) {
    if (step.what == Try::Verify)
        pin.verifyPin(step.code, done);
    else if (step.what == Try::Puk)
        pin.verifyPuk(step.code, step.newCode, done);
    else if (step.what == Try::Change)
        pin.changePin(step.code, step.newCode, done);
    else
        pin.setPinRequest(step.what == Try::RequestOn, step.code, done);
}

} // namespace

// One SIM through a life of tries: malformed codes never reach it, wrong ones count down to the PUK, the
// PUK sets a new PIN, and the PIN request and the PIN itself change only with the right PIN.
TEST(PinController, TriesAgainstTheSimulatedSim) {
    SimulatedLink modem({"--scenario", "pin-locked"});
    ASSERT_TRUE(modem.reaches(ModemLink::State::NeedPin));
    PinController pin(modem.link);
    QSignalSpy read(&pin, &PinController::simStateRead);
    QSignalSpy tried(&pin, &PinController::tried);
    // clang-format off
    const Step steps[] = {
        {Try::Verify, "12", {}, WORKER_ERR_INVALID_ARGUMENT, -1, 0},
        {Try::Puk, "1234", "1234", WORKER_ERR_INVALID_ARGUMENT, -1, 0},
        {Try::Verify, "0000", {}, PinResult::kWrongCode, SimState::kPin, 2},
        {Try::Verify, "1234", {}, WORKER_OK, SimState::kReady, 3},
        {Try::RequestOff, "0000", {}, PinResult::kWrongCode, SimState::kReady, 2},
        {Try::RequestOff, "1234", {}, WORKER_OK, SimState::kReady, 3},
        {Try::RequestOn, "1234", {}, WORKER_OK, SimState::kReady, 3},
        {Try::Change, "1234", "4321", WORKER_OK, SimState::kReady, 3},
        {Try::Change, "1234", "5678", PinResult::kWrongCode, SimState::kReady, 2},
        {Try::Change, "1111", "5678", PinResult::kWrongCode, SimState::kReady, 1},
        {Try::Change, "1111", "5678", PinResult::kWrongCode, SimState::kPuk, 10},
        {Try::Puk, "87654321", "2468", PinResult::kWrongCode, SimState::kPuk, 9},
        {Try::Puk, "12345678", "2468", WORKER_OK, SimState::kReady, 3},
    };
    // clang-format on
    for (const Step& step : steps) {
        SCOPED_TRACE(step.code.toStdString() + " " + step.newCode.toStdString());
        read.clear();
        tried.clear();
        std::optional<Outcome> outcome;
        StartTry(pin, step, [&outcome](Outcome answer) { outcome = answer; });
        ASSERT_TRUE(waitFor([&] { return outcome.has_value(); }));
        EXPECT_EQ(outcome->code, step.result);
        ASSERT_EQ(tried.size(), 1);
        EXPECT_EQ(tried.at(0).at(0).value<Outcome>().code, step.result);
        ASSERT_EQ(read.size(), step.state < 0 ? 0 : 1);
        if (step.state < 0)
            continue;
        const auto sim = read.at(0).at(0).value<BLPinCheckState>();
        EXPECT_EQ(sim.nState, step.state);
        EXPECT_EQ(step.state == SimState::kPuk ? sim.nPukCnt : sim.nPinCnt, step.attempts);
    }
    // The app's link followed the SIM back to ready; the PIN request was switched back on.
    EXPECT_TRUE(modem.reaches(ModemLink::State::Ready));
    QSignalSpy request(&pin, &PinController::pinRequestRead);
    pin.readPinRequest();
    ASSERT_TRUE(request.wait());
    EXPECT_EQ(request.at(0).at(0).value<PinController::PinRequest>(), PinController::PinRequest::On);
}
