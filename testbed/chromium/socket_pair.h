// Two sockets of this machine that are connected to each other: a pipe that reads and writes.
#pragma once

#include <utility>

#include <winsock2.h>

#include <windows.h>

namespace testbed::chromium {

/// Winsock, for as long as it lives.
class SocketLibrary {
  public:
    SocketLibrary();
    ~SocketLibrary();
    SocketLibrary(const SocketLibrary&) = delete;
    SocketLibrary& operator=(const SocketLibrary&) = delete;
};

class Socket {
  public:
    Socket() = default;
    explicit Socket(SOCKET handle) : handle_(handle) {}
    ~Socket() { Close(); }
    Socket(Socket&& other) noexcept : handle_(std::exchange(other.handle_, INVALID_SOCKET)) {}
    Socket& operator=(Socket&& other) noexcept {
        if (this != &other) {
            Close();
            handle_ = std::exchange(other.handle_, INVALID_SOCKET);
        }
        return *this;
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;

    SOCKET Get() const { return handle_; }
    bool Valid() const { return handle_ != INVALID_SOCKET; }

  private:
    void Close() const;

    SOCKET handle_ = INVALID_SOCKET;
};

struct SocketPair {
    Socket ours;   ///< not inherited by processes that are started
    Socket theirs; ///< inherited
};

/// @return sockets that are not valid, with the reason in WSAGetLastError, if there are none to be had.
SocketPair MakeSocketPair();

} // namespace testbed::chromium
