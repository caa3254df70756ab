#include "SignalPeakWindow.h"

void SignalPeakWindow::add(qint64 atMs, int dbm) {
    if (dbm >= 0)
        return;
    // A time going backwards (a clock reset) starts the window afresh.
    if (!_readings.empty() && atMs < _readings.back().first)
        _readings.clear();
    // A weaker earlier reading can never be the best again while this one is in the window.
    while (!_readings.empty() && _readings.back().second <= dbm)
        _readings.pop_back();
    _readings.emplace_back(atMs, dbm);
}

int SignalPeakWindow::best(qint64 nowMs) {
    while (!_readings.empty() && _readings.front().first <= nowMs - kWindowMs)
        _readings.pop_front();
    return _readings.empty() ? 0 : _readings.front().second;
}
