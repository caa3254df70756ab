#include "PtyPeer.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <climits>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <sys/eventfd.h>
#include <unistd.h>

namespace {

constexpr auto kWriteDeadline = std::chrono::seconds(5);

bool IsTerminator(char c) {
    return c == '\r' || c == '\x1a' || c == '\x1b';
}

} // namespace

PtyPeer::PtyPeer() {
    if (openpty(&_masterFd, &_slaveFd, nullptr, nullptr, nullptr) != 0) {
        _masterFd = _slaveFd = -1;
        return;
    }
    char name[PATH_MAX] = {};
    _wakeFd = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (ttyname_r(_slaveFd, name, sizeof(name)) != 0 || _wakeFd < 0) {
        stop(); // closes what was opened; isOpen() is false
        return;
    }
    fcntl(_masterFd, F_SETFL, fcntl(_masterFd, F_GETFL) | O_NONBLOCK);
    fcntl(_masterFd, F_SETFD, FD_CLOEXEC);
    fcntl(_slaveFd, F_SETFD, FD_CLOEXEC);
    _slavePath = name;
    _thread = std::thread([this] { run(); });
}

PtyPeer::~PtyPeer() {
    stop();
}

void PtyPeer::stop() {
    _stopping = true;
    if (_wakeFd >= 0) {
        const uint64_t one = 1;
        [[maybe_unused]] ssize_t ignored = write(_wakeFd, &one, sizeof(one));
    }
    if (_thread.joinable())
        _thread.join();
    for (int* fd : {&_masterFd, &_slaveFd, &_wakeFd}) {
        if (*fd >= 0)
            close(*fd);
        *fd = -1;
    }
}

void PtyPeer::expect(std::string command, Answer answer) {
    std::lock_guard<std::mutex> lock(_mutex);
    _script.push_back({std::move(command), std::move(answer)});
    _changed.notify_all();
}

void PtyPeer::expect(std::string command, std::string answer) {
    Answer pieces;
    if (!answer.empty())
        pieces.push_back({std::chrono::milliseconds(0), std::move(answer)});
    expect(std::move(command), std::move(pieces));
}

void PtyPeer::setHandler(Handler handler) {
    std::lock_guard<std::mutex> lock(_mutex);
    _handler = std::move(handler);
}

void PtyPeer::writeUnsolicited(const std::string& text) {
    writeAll(text);
}

bool PtyPeer::waitForCommands(size_t count, std::chrono::milliseconds timeout) const {
    std::unique_lock<std::mutex> lock(_mutex);
    return _changed.wait_for(lock, timeout, [&] { return _received.size() >= count; });
}

bool PtyPeer::waitUntilIdle(std::chrono::milliseconds timeout) const {
    std::unique_lock<std::mutex> lock(_mutex);
    return _changed.wait_for(lock, timeout, [&] { return _script.empty() && _outbox.empty() && !_writing; });
}

std::vector<std::string> PtyPeer::received() const {
    std::lock_guard<std::mutex> lock(_mutex);
    return _received;
}

void PtyPeer::run() {
    std::string partial;
    char buffer[4096];
    while (!_stopping) {
        int timeoutMs = -1;
        {
            std::lock_guard<std::mutex> lock(_mutex);
            if (!_outbox.empty()) {
                const auto wait =
                    std::chrono::ceil<std::chrono::milliseconds>(_outbox.begin()->first - Clock::now());
                timeoutMs = static_cast<int>(std::max<int64_t>(0, wait.count()));
            }
        }
        pollfd fds[2] = {{_masterFd, POLLIN, 0}, {_wakeFd, POLLIN, 0}};
        if (poll(fds, 2, timeoutMs) < 0 && errno != EINTR)
            break;
        if (fds[1].revents & POLLIN) {
            uint64_t count = 0;
            [[maybe_unused]] ssize_t ignored = read(_wakeFd, &count, sizeof(count));
        }
        if (fds[0].revents & POLLIN) {
            ssize_t n;
            while ((n = read(_masterFd, buffer, sizeof(buffer))) > 0) {
                for (ssize_t i = 0; i < n; ++i) {
                    partial.push_back(buffer[i]);
                    if (IsTerminator(buffer[i])) {
                        onCommand(partial);
                        partial.clear();
                    }
                }
            }
        }
        for (;;) {
            std::string text;
            {
                std::lock_guard<std::mutex> lock(_mutex);
                if (_stopping || _outbox.empty() || _outbox.begin()->first > Clock::now())
                    break;
                text = std::move(_outbox.begin()->second);
                _outbox.erase(_outbox.begin());
                _writing = true;
            }
            writeAll(text);
            std::lock_guard<std::mutex> lock(_mutex);
            _writing = false;
            _changed.notify_all();
        }
    }
}

void PtyPeer::onCommand(const std::string& command) {
    Handler handler;
    {
        std::lock_guard<std::mutex> lock(_mutex);
        _received.push_back(command);
        _changed.notify_all();
        if (!_script.empty()) {
            if (_script.front().command != command) {
                ADD_FAILURE() << "PtyPeer: unexpected command \"" << command << "\", expected \""
                              << _script.front().command << "\"";
                return;
            }
            scheduleLocked(_script.front().answer);
            _script.pop_front();
            return;
        }
        if (!_handler) {
            ADD_FAILURE() << "PtyPeer: unexpected command \"" << command << "\" after the script";
            return;
        }
        handler = _handler;
    }
    Answer answer = handler(command);
    std::lock_guard<std::mutex> lock(_mutex);
    scheduleLocked(answer);
}

void PtyPeer::scheduleLocked(Answer& answer) {
    auto due = Clock::now();
    for (Piece& piece : answer) {
        due += piece.delay;
        _outbox.emplace(due, std::move(piece.text));
    }
    _changed.notify_all();
}

void PtyPeer::writeAll(const std::string& text) {
    std::lock_guard<std::mutex> lock(_writeMutex);
    const auto deadline = Clock::now() + kWriteDeadline;
    size_t done = 0;
    while (done < text.size() && !_stopping && Clock::now() < deadline) {
        const ssize_t n = write(_masterFd, text.data() + done, text.size() - done);
        if (n > 0) {
            done += static_cast<size_t>(n);
        } else if (n < 0 && errno != EAGAIN && errno != EINTR) {
            break;
        } else {
            pollfd out = {_masterFd, POLLOUT, 0};
            poll(&out, 1, 20);
        }
    }
}
