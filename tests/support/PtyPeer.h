#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

// The modem's side of a real pseudo-terminal pair, for tests of the serial channel and everything on it.
// Open the slave path with ComOperation::openCom; a peer thread reads what the channel writes, cut into
// commands at "\r" (also at Ctrl-Z, which ends a PDU, and at Esc, which aborts one), and answers each
// from a script of expected commands, or from a handler once the script is used up. Answers are written
// in pieces with a delay before each. The peer keeps the slave open itself, so the channel may close and
// reopen the port without hanging up the pty. An unexpected command fails the current test and gets no
// answer. All waits take a deadline.
class PtyPeer {
public:
    struct Piece {
        std::chrono::milliseconds delay{0}; // before this piece, counted from the previous one
        std::string text;
    };
    using Answer = std::vector<Piece>;
    // Called on the peer thread for a command the script does not cover; the answer may be empty.
    using Handler = std::function<Answer(const std::string& command)>;

    PtyPeer();
    ~PtyPeer();
    PtyPeer(const PtyPeer&) = delete;
    PtyPeer& operator=(const PtyPeer&) = delete;

    bool isOpen() const { return _masterFd >= 0; }
    const std::string& slavePath() const { return _slavePath; }

    // Appends a step: when the next command equals `command` (terminator included), write `answer`.
    void expect(std::string command, Answer answer);
    void expect(std::string command, std::string answer);
    void setHandler(Handler handler);
    // Writes text to the channel now, whatever the script is doing; returns when it is in the tty.
    void writeUnsolicited(const std::string& text);

    // True once at least `count` commands have arrived, false at the deadline.
    bool waitForCommands(size_t count, std::chrono::milliseconds timeout) const;
    // True once every scripted step has been used and all its pieces written.
    bool waitUntilIdle(std::chrono::milliseconds timeout) const;
    std::vector<std::string> received() const;

    // Stops the thread, dropping pieces not yet written. Called by the destructor.
    void stop();

private:
    struct Step {
        std::string command;
        Answer answer;
    };
    using Clock = std::chrono::steady_clock;

    void run();
    void onCommand(const std::string& command);
    void writeAll(const std::string& text);
    void scheduleLocked(Answer& answer);

    int _masterFd = -1;
    int _slaveFd = -1;
    int _wakeFd = -1;
    std::string _slavePath;

    mutable std::mutex _mutex;
    mutable std::condition_variable _changed;
    std::deque<Step> _script;
    Handler _handler;
    std::multimap<Clock::time_point, std::string> _outbox; // equal times keep their order
    std::vector<std::string> _received;
    bool _writing = false;
    std::atomic<bool> _stopping{false};

    std::mutex _writeMutex;
    std::thread _thread;
};
