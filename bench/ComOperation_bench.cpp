// One AT exchange over a pseudo-terminal pair with a peer that answers at once: the time from the
// peer's last byte written to writeCom's return. The channel polls every 500 microseconds, so the
// median should stay under 1 ms.
#include "ComOperation.h"
#include "DebugSink.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <climits>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// Answers every command ending in "\r" with "\r\nOK\r\n" and notes when it wrote the answer.
class InstantPeer {
public:
    InstantPeer() {
        if (openpty(&_master, &_slave, nullptr, nullptr, nullptr) != 0)
            return;
        char name[PATH_MAX] = {};
        if (ttyname_r(_slave, name, sizeof(name)) == 0)
            _path = name;
        _thread = std::thread([this] { run(); });
    }
    ~InstantPeer() {
        _stop = true;
        if (_thread.joinable())
            _thread.join();
        if (_master >= 0)
            close(_master);
        if (_slave >= 0)
            close(_slave);
    }
    const std::string& path() const { return _path; }
    int64_t lastAnswerNs() const { return _lastAnswerNs.load(); }

private:
    void run() {
        static const char kAnswer[] = "\r\nOK\r\n";
        char buffer[256];
        while (!_stop) {
            pollfd in = {_master, POLLIN, 0};
            if (poll(&in, 1, 50) <= 0)
                continue;
            const ssize_t n = read(_master, buffer, sizeof(buffer));
            if (n <= 0 || std::find(buffer, buffer + n, '\r') == buffer + n)
                continue;
            // Stamped just before the write, so the channel can never see the answer before its stamp;
            // the few microseconds of the write count against the channel.
            _lastAnswerNs.store(Clock::now().time_since_epoch().count());
            [[maybe_unused]] const ssize_t written = write(_master, kAnswer, sizeof(kAnswer) - 1);
        }
    }

    int _master = -1;
    int _slave = -1;
    std::string _path;
    std::atomic<bool> _stop{false};
    std::atomic<int64_t> _lastAnswerNs{0};
    std::thread _thread;
};

void BM_AtExchangeLatency(benchmark::State& state) {
    InstantPeer peer;
    std::FILE* const sink = GetDebugSink();
    SetDebugSink(nullptr); // the per-answer debug texts would be timed too
    ComOperation* com = ComOperation::GetInstance();
    if (peer.path().empty() || com->openCom(peer.path().c_str()) != 0) {
        SetDebugSink(sink);
        state.SkipWithError("no pseudo-terminal");
        return;
    }

    std::vector<double> latenciesUs;
    std::string response;
    for (auto _ : state) {
        if (com->writeCom("AT\r", nullptr, 5, response) != 0) {
            state.SkipWithError("the exchange failed");
            break;
        }
        const int64_t returned = Clock::now().time_since_epoch().count();
        const double seconds = static_cast<double>(returned - peer.lastAnswerNs()) * 1e-9;
        state.SetIterationTime(seconds);
        latenciesUs.push_back(seconds * 1e6);
    }
    com->closeCom();
    SetDebugSink(sink);

    if (!latenciesUs.empty()) {
        std::sort(latenciesUs.begin(), latenciesUs.end());
        state.counters["median_us"] = latenciesUs[latenciesUs.size() / 2];
        state.counters["p90_us"] = latenciesUs[latenciesUs.size() * 9 / 10];
        state.counters["max_us"] = latenciesUs.back();
    }
}
BENCHMARK(BM_AtExchangeLatency)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace
