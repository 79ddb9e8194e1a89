// An HTTP server on the loopback interface that says what a test has written down, in threads of the test program.
#pragma once

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include <winsock2.h>

#include <windows.h>

namespace test_support {

/// The bytes of one answer. Each piece after the first waits for a call of `CannedServer::SendNextPiece`; a missing call
/// holds the answer back for as long as the server lives.
using CannedAnswer = std::vector<std::string>;

/// A complete answer in one piece. `headers` are complete lines; the length is added.
CannedAnswer Answer(int status, const std::string& headers, const std::string& body);

/// Returns true for a GET request of this path.
bool Asks(const std::string& request, const std::string& path);

/// The value of a request's header, without blanks around it, or an empty text. The name is compared as it is written.
std::string HeaderOf(const std::string& request, const std::string& name);

class CannedServer {
  public:
    /// Gives the answer to a request, whose text is the head and then the body. Called on the server's threads, one call at
    /// a time.
    using Answerer = std::function<CannedAnswer(const std::string& request)>;

    /// Listens from now on, on a port that no other server of this process has had: WinINet keeps credentials by port.
    /// Connections are kept open unless an answer says `Connection: close`.
    explicit CannedServer(Answerer answerer);

    /// Closes every connection and waits for the threads.
    ~CannedServer();
    CannedServer(const CannedServer&) = delete;
    CannedServer& operator=(const CannedServer&) = delete;

    /// "http://127.0.0.1:PORT" and the path.
    std::wstring Url(const std::wstring& path = L"/") const;

    /// The requests so far, in order.
    std::vector<std::string> Requests() const;

    void SendNextPiece();

  private:
    class Connection;

    std::uint16_t Listen();
    void Accept();
    void Serve(SOCKET socket);
    CannedAnswer AnswerTo(const std::string& request);
    bool Send(const Connection& connection, const CannedAnswer& answer);

    Answerer answerer_;
    SOCKET listener_ = INVALID_SOCKET;
    std::uint16_t port_ = 0;
    HANDLE stopping_;          // an event that stays set
    HANDLE nextPiece_;         // a semaphore
    mutable std::mutex mutex_; // guards the requests
    std::vector<std::string> requests_;
    std::vector<std::thread> servers_; // the acceptor's until it has ended
    std::thread acceptor_;
};

} // namespace test_support
