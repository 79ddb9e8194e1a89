// By way of a listening socket on the loopback interface, which is closed at once.
#include "testbed/chromium/socket_pair.h"

namespace testbed::chromium {
namespace {

/// Where a socket is, or where the one it is connected to is; 0 on a failure.
u_short Port(const Socket& socket, int(WSAAPI* ask)(SOCKET, sockaddr*, int*)) {
    sockaddr_in address{};
    int size = sizeof(address);
    return ask(socket.Get(), reinterpret_cast<sockaddr*>(&address), &size) == 0 ? address.sin_port
                                                                                : u_short{0};
}

Socket NewSocket(DWORD flags) {
    return Socket(WSASocketW(AF_INET, SOCK_STREAM, IPPROTO_TCP, nullptr, 0, flags));
}

} // namespace

SocketLibrary::SocketLibrary() {
    WSADATA data{};
    WSAStartup(MAKEWORD(2, 2), &data);
}

SocketLibrary::~SocketLibrary() {
    WSACleanup();
}

void Socket::Close() const {
    if (Valid()) {
        closesocket(handle_);
    }
}

SocketPair MakeSocketPair() {
    const Socket listener = NewSocket(WSA_FLAG_NO_HANDLE_INHERIT);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (!listener.Valid() || bind(listener.Get(), generic, sizeof(address)) != 0 ||
        listen(listener.Get(), 1) != 0) {
        return {};
    }
    address.sin_port = Port(listener, &getsockname);
    SocketPair pair{NewSocket(WSA_FLAG_NO_HANDLE_INHERIT), {}};
    if (!pair.ours.Valid() || connect(pair.ours.Get(), generic, sizeof(address)) != 0) {
        return {};
    }
    pair.theirs = Socket(accept(listener.Get(), nullptr, nullptr));
    // Somebody else on this machine may have been quicker to connect.
    if (!pair.theirs.Valid() || Port(pair.theirs, &getpeername) != Port(pair.ours, &getsockname)) {
        WSASetLastError(WSAECONNABORTED);
        return {};
    }
    // Messages are small and each is waited for.
    for (const Socket* socket : {&pair.ours, &pair.theirs}) {
        const BOOL noDelay = TRUE;
        setsockopt(socket->Get(), IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&noDelay),
                   sizeof(noDelay));
    }
    SetHandleInformation(reinterpret_cast<HANDLE>(pair.theirs.Get()), HANDLE_FLAG_INHERIT,
                         HANDLE_FLAG_INHERIT);
    return pair;
}

} // namespace testbed::chromium
