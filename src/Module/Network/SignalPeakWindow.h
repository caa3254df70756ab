#pragma once

#include <QtGlobal>

#include <deque>
#include <utility>

// The best signal of the last minute, for the finder: readings go in with their time (milliseconds of a
// steady clock), and best() gives the strongest of those no older than the window. Unknown readings (0
// dBm) do not count. Only readings that may still become the best are kept, so the window stays small
// however fast it is fed.
class SignalPeakWindow {
public:
    static constexpr qint64 kWindowMs = 60000;

    void add(qint64 atMs, int dbm);
    // The strongest reading of (nowMs - kWindowMs, nowMs]; 0 when there is none.
    int best(qint64 nowMs);

private:
    // Readings in time order; older or weaker ones behind a stronger later one are dropped.
    std::deque<std::pair<qint64, int>> _readings;
};
