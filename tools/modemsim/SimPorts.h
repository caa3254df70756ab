#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace modemsim {

// One pseudo-terminal standing in for a port of the stick. The simulator keeps the master; the host
// opens the slave through a link in the device folder and may close and reopen it. With no slave open
// the master reports a hang-up, so the host's presence is probed from time to time instead of polled
// (no busy loop), and a closed host gets no output.
class PtyPort {
public:
    using Clock = std::chrono::steady_clock;

    PtyPort() = default;
    ~PtyPort() { Close(); }
    PtyPort(const PtyPort&) = delete;
    PtyPort& operator=(const PtyPort&) = delete;

    bool Open(std::string& error);
    void Close();
    bool IsOpen() const { return master_ >= 0; }
    int Fd() const { return master_; }
    const std::string& Path() const { return path_; }
    bool HostConnected() const { return connected_; }

    // Checks whether the host holds the port; true when that changed.
    bool Probe();
    // The host went away (a hang-up or an I/O error seen on the master).
    void MarkClosed();
    // Reads what the host wrote; empty when nothing (or the host is gone: see HostConnected).
    std::string Read();

    void Queue(std::string_view bytes);
    bool HasPending() const { return !pending_.empty(); }
    // Writes pending bytes, in pieces of chunkBytes (0: all at once) chunkGapMs apart.
    void Flush(Clock::time_point now, int chunkBytes, int chunkGapMs);
    // When the next piece may go (only while a gap holds it back).
    std::optional<Clock::time_point> NextWrite(Clock::time_point now) const;

private:
    int master_ = -1;
    std::string path_;
    bool connected_ = false;
    std::string pending_;
    Clock::time_point nextWrite_{};
};

// The links the device discovery looks for: "cu.VELMobileConnector<suffix>" to the dial port and
// "cu.VELDeviceInterface<suffix less its last character>3" to the AT port ("1" gives
// cu.VELMobileConnector1 and cu.VELDeviceInterface3).
struct DeviceLinks {
    std::string atLink;
    std::string dialLink;

    static std::string AtName(const std::string& suffix);
    static std::string DialName(const std::string& suffix);
    bool Create(const std::string& devDir, const std::string& suffix, const std::string& atPath,
                const std::string& dialPath, std::string& error);
    void Remove();
};

} // namespace modemsim
