// One thread a connection. Sockets do not block, so that a thread that waits for one also hears that the server stops.
#include "tests/support/canned_server.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>
#include <optional>
#include <set>
#include <stdexcept>
#include <string_view>
#include <utility>

namespace test_support {
namespace {

constexpr std::string_view kHeadEnd = "\r\n\r\n";
constexpr int kMostAttempts = 1000;

class SocketLibrary {
  public:
    SocketLibrary() {
        WSADATA data{};
        WSAStartup(MAKEWORD(2, 2), &data);
    }
    ~SocketLibrary() { WSACleanup(); }
    SocketLibrary(const SocketLibrary&) = delete;
    SocketLibrary& operator=(const SocketLibrary&) = delete;
};

std::size_t BodyLength(const std::string& head) {
    const std::string text = HeaderOf(head, "Content-Length");
    std::size_t length = 0;
    std::from_chars(text.data(), text.data() + text.size(), length);
    return length;
}

} // namespace

CannedAnswer Answer(int status, const std::string& headers, const std::string& body) {
    return {"HTTP/1.1 " + std::to_string(status) + " Canned\r\n" + headers +
            "Content-Length: " + std::to_string(body.size()) + "\r\n\r\n" + body};
}

bool Asks(const std::string& request, const std::string& path) {
    return request.starts_with("GET " + path + " ");
}

std::string HeaderOf(const std::string& request, const std::string& name) {
    const std::size_t line = request.find("\r\n" + name + ": ");
    if (line == std::string::npos) {
        return {};
    }
    const std::size_t start = line + name.size() + 4;
    return request.substr(start, request.find("\r\n", start) - start);
}

/// One client. Belongs to the thread that serves it.
class CannedServer::Connection {
  public:
    Connection(SOCKET socket, HANDLE stopping)
        : socket_(socket), changed_(WSACreateEvent()), stopping_(stopping) {
        WSAEventSelect(socket_, changed_, FD_READ | FD_WRITE | FD_CLOSE);
    }
    ~Connection() {
        closesocket(socket_);
        WSACloseEvent(changed_);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// @return the next request, or nothing when the client has gone or the server stops.
    std::optional<std::string> Receive() {
        for (;;) {
            if (const std::size_t headEnd = received_.find(kHeadEnd); headEnd != std::string::npos) {
                const std::size_t size = headEnd + kHeadEnd.size() + BodyLength(received_.substr(0, headEnd));
                if (received_.size() >= size) {
                    std::string request = received_.substr(0, size);
                    received_.erase(0, size);
                    return request;
                }
            }
            std::array<char, 4096> buffer{};
            const int count = recv(socket_, buffer.data(), static_cast<int>(buffer.size()), 0);
            if (count > 0) {
                received_.append(buffer.data(), static_cast<std::size_t>(count));
            } else if (count == 0 || !WaitForChange()) {
                return std::nullopt;
            }
        }
    }

    /// @return false when the client has gone or the server stops.
    bool Send(std::string_view bytes) const {
        while (!bytes.empty()) {
            const int count = send(socket_, bytes.data(), static_cast<int>(bytes.size()), 0);
            if (count > 0) {
                bytes.remove_prefix(static_cast<std::size_t>(count));
            } else if (!WaitForChange()) {
                return false;
            }
        }
        return true;
    }

    /// @return false if the server stops first.
    bool WaitFor(HANDLE signal) const {
        const std::array waited = {stopping_, signal};
        return WaitForMultipleObjects(static_cast<DWORD>(waited.size()), waited.data(), FALSE, INFINITE) ==
               WAIT_OBJECT_0 + 1;
    }

  private:
    /// After a call that failed.
    bool WaitForChange() const {
        if (WSAGetLastError() != WSAEWOULDBLOCK || !WaitFor(changed_)) {
            return false;
        }
        WSAResetEvent(changed_);
        return true;
    }

    SOCKET socket_;
    HANDLE changed_;
    HANDLE stopping_;
    std::string received_;
};

CannedServer::CannedServer(Answerer answerer)
    : answerer_(std::move(answerer)),
      stopping_(CreateEventW(nullptr, TRUE, FALSE, nullptr)),
      nextPiece_(CreateSemaphoreW(nullptr, 0, std::numeric_limits<LONG>::max(), nullptr)) {
    static const SocketLibrary library;
    static std::set<std::uint16_t> used;
    for (int attempt = 0; !used.insert(Listen()).second; ++attempt) {
        closesocket(listener_);
        if (attempt == kMostAttempts) {
            throw std::runtime_error("the canned servers have used up the ports");
        }
    }
    acceptor_ = std::thread(&CannedServer::Accept, this);
}

std::uint16_t CannedServer::Listen() {
    listener_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int size = sizeof(address);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(listener_, generic, size) != 0 || listen(listener_, SOMAXCONN) != 0 ||
        getsockname(listener_, generic, &size) != 0) {
        throw std::runtime_error("the canned server cannot listen");
    }
    port_ = ntohs(address.sin_port);
    return port_;
}

CannedServer::~CannedServer() {
    SetEvent(stopping_);
    closesocket(listener_);
    acceptor_.join();
    for (std::thread& server : servers_) {
        server.join();
    }
    CloseHandle(nextPiece_);
    CloseHandle(stopping_);
}

std::wstring CannedServer::Url(const std::wstring& path) const {
    return L"http://127.0.0.1:" + std::to_wstring(port_) + path;
}

std::vector<std::string> CannedServer::Requests() const {
    const std::scoped_lock lock(mutex_);
    return requests_;
}

void CannedServer::SendNextPiece() {
    ReleaseSemaphore(nextPiece_, 1, nullptr);
}

void CannedServer::Accept() {
    for (;;) {
        const SOCKET accepted = accept(listener_, nullptr, nullptr);
        if (accepted == INVALID_SOCKET) {
            return;
        }
        servers_.emplace_back(&CannedServer::Serve, this, accepted);
    }
}

void CannedServer::Serve(SOCKET socket) {
    Connection connection(socket, stopping_);
    while (const auto request = connection.Receive()) {
        const CannedAnswer answer = AnswerTo(*request);
        if (!Send(connection, answer) || answer.front().find("Connection: close") != std::string::npos) {
            return;
        }
    }
}

CannedAnswer CannedServer::AnswerTo(const std::string& request) {
    const std::scoped_lock lock(mutex_);
    requests_.push_back(request);
    return answerer_(request);
}

bool CannedServer::Send(const Connection& connection, const CannedAnswer& answer) {
    return std::ranges::all_of(answer, [&](const std::string& piece) {
        return (&piece == &answer.front() || connection.WaitFor(nextPiece_)) && connection.Send(piece);
    });
}

} // namespace test_support
