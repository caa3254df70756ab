#pragma once

#include <sys/types.h>

#include <set>
#include <string>

// The dial-up services' pppd peer files, "VELMODEM<n>", as the service tool writes them and the
// connection manager picks them. Plain C++: the service tool, which runs with root's rights, links this
// file and nothing else of ours.
//
// A peer file starts with a header comment naming the user it was made for ("# owner uid 1000"); a peer
// made for another user is never reused or overwritten, so users of one machine keep their own peers.
namespace DialupPeer {

inline constexpr char kPrefix[] = "VELMODEM";
inline constexpr int kMaxNumber = 99999;

// n of "VELMODEM<n>" (1 to kMaxNumber, no leading zero); 0 for any other name.
int numberOf(const std::string& name);
std::string nameOf(int number);

// The uid a peer file's header names; -1 when it names none.
long ownerOf(const std::string& text);
// The first kilobytes of a file; empty when it cannot be read. Peer files are outside input.
std::string readHead(const std::string& path);

// The peer file's text for the tty (an absolute path), made for uid, with the extra pppd words given.
std::string peerText(const std::string& service, const std::string& tty, uid_t uid,
                     const std::set<std::string>& options);

// An exclusive lock on the peers folder, held while a name is chosen and while a peer is written.
// Folders the user cannot open (no group dip) cannot be locked: the service tool's ownership check
// still keeps peers apart then.
class FolderLock {
public:
    explicit FolderLock(const std::string& folder);
    ~FolderLock();
    FolderLock(const FolderLock&) = delete;
    FolderLock& operator=(const FolderLock&) = delete;
    bool locked() const { return _fd >= 0; }

private:
    int _fd = -1;
};

// The name for a new peer of uid: the preferred number when that peer is absent or the user's own, else
// the lowest number whose peer does not exist; numbers in skip are not taken. Empty when none is left.
std::string choose(const std::string& folder, uid_t uid, int preferred, const std::set<int>& skip = {});

} // namespace DialupPeer
