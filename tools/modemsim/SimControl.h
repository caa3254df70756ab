#pragma once

#include <functional>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include "SimModem.h"

struct pollfd;

namespace modemsim {

// The control socket's commands, one line each, one JSON reply line each ({"ok":true,...} or
// {"ok":false,"error":"..."}): sms, sms-pdu, ussd, ring, hangup, stk, signal, reg, set, inject, dump,
// unplug, plug, quit, help. README.md lists their arguments.
struct ControlHooks {
    std::function<nlohmann::json()> unplug;
    std::function<nlohmann::json()> plug;
    std::function<void()> quit;
};

nlohmann::json ExecuteControl(const std::string& line, SimModem& modem, const ControlHooks& hooks);

// The Unix stream socket behind it: accepts clients, splits their input into lines, queues replies.
class ControlSocket {
public:
    ControlSocket() = default;
    ~ControlSocket() { Close(); }
    ControlSocket(const ControlSocket&) = delete;
    ControlSocket& operator=(const ControlSocket&) = delete;

    bool Listen(const std::string& path, std::string& error);
    void Close();
    const std::string& Path() const { return path_; }

    // Adds the listening socket and the clients to a poll set; Handle reads the results back.
    void AddPollFds(std::vector<pollfd>& fds) const;
    void Handle(const std::vector<pollfd>& fds,
                const std::function<std::string(const std::string&)>& execute);
    // Writes what is left of the replies (before exit).
    void FlushReplies();

private:
    struct Client {
        int fd = -1;
        std::string in;
        std::string out;
    };
    void Accept();
    bool Serve(Client& client, short revents, const std::function<std::string(const std::string&)>& execute);

    int listen_ = -1;
    std::string path_;
    std::vector<Client> clients_;
};

} // namespace modemsim
