// Sending, and the thread that receives.
#include "testbed/chromium/pipe.h"

#include <process.h>

#include <array>
#include <cerrno>
#include <exception>
#include <functional>
#include <iterator>
#include <system_error>
#include <utility>

#include "testbed/chromium/exclusive_lock.h"

namespace testbed::chromium {
namespace {

constexpr DWORD kSendMilliseconds = 5000;
/// More than the launcher takes to kill a Chromium whose status nobody waits for any more.
constexpr DWORD kKillMilliseconds = 5000;
constexpr std::size_t kReadSize = 65536;

} // namespace

Pipe::Pipe(Socket channel, Socket status, std::function<void()> arrived)
    : channel_(std::move(channel)),
      status_(std::move(status)),
      window_(std::move(arrived)),
      end_(CreateEventW(nullptr, TRUE, FALSE, nullptr), &CloseHandle),
      reader_(nullptr, &CloseHandle) {
    setsockopt(channel_.Get(), SOL_SOCKET, SO_SNDTIMEO, reinterpret_cast<const char*>(&kSendMilliseconds),
               sizeof(kSendMilliseconds));
    reader_.reset(reinterpret_cast<HANDLE>(_beginthreadex(nullptr, 0, &Pipe::ReadAll, this, 0, nullptr)));
    if (!reader_) {
        throw std::system_error(errno, std::generic_category(), "the thread of a pipe");
    }
}

Pipe::~Pipe() {
    Close();
    shutdown(status_.Get(), SD_BOTH);
    // Below Wine a shutdown does not end a read that waits; it ends when the other end closes.
    if (WaitForSingleObject(reader_.get(), kKillMilliseconds) != WAIT_OBJECT_0) {
        CancelIoEx(reinterpret_cast<HANDLE>(channel_.Get()), nullptr);
        CancelIoEx(reinterpret_cast<HANDLE>(status_.Get()), nullptr);
        WaitForSingleObject(reader_.get(), INFINITE);
    }
}

bool Pipe::Take(std::deque<std::string>& messages) {
    const ExclusiveLock locked(lock_);
    std::move(arrived_.begin(), arrived_.end(), std::back_inserter(messages));
    arrived_.clear();
    woken_ = false;
    return !ended_;
}

void Pipe::Send(std::string_view message) {
    std::string bytes(message);
    bytes += '\0';
    std::string_view left = bytes;
    while (!left.empty()) {
        const int count = send(channel_.Get(), left.data(), static_cast<int>(left.size()), 0);
        if (count <= 0) {
            Close();
            return;
        }
        left.remove_prefix(static_cast<std::size_t>(count));
    }
}

void Pipe::Close() const {
    shutdown(channel_.Get(), SD_BOTH);
}

bool Pipe::WaitForEnd(DWORD milliseconds) const {
    return WaitForSingleObject(end_.get(), milliseconds) == WAIT_OBJECT_0;
}

unsigned __stdcall Pipe::ReadAll(void* self) noexcept {
    auto& pipe = *static_cast<Pipe*>(self);
    try {
        pipe.Read(pipe.channel_);
        pipe.Read(pipe.status_);
    } catch (const std::exception&) {
        OutputDebugStringA("No memory for what Chromium says; the channel is given up\n");
        pipe.Close();
    }
    pipe.DeliverEnd();
    return 0;
}

void Pipe::Read(const Socket& socket) {
    std::string message;
    std::array<char, kReadSize> buffer{};
    for (;;) {
        const int count = recv(socket.Get(), buffer.data(), static_cast<int>(buffer.size()), 0);
        if (count <= 0) {
            break;
        }
        std::string_view bytes(buffer.data(), static_cast<std::size_t>(count));
        for (std::size_t end = bytes.find('\0'); end != std::string_view::npos; end = bytes.find('\0')) {
            message += bytes.substr(0, end);
            Deliver(std::exchange(message, {}));
            bytes.remove_prefix(end + 1);
        }
        message += bytes;
    }
}

void Pipe::Deliver(std::string&& message) {
    const ExclusiveLock locked(lock_);
    arrived_.push_back(std::move(message));
    WakeOnce();
}

void Pipe::DeliverEnd() {
    SetEvent(end_.get());
    const ExclusiveLock locked(lock_);
    ended_ = true;
    WakeOnce();
}

/// One posted message for all that is waiting: a queue has a limit. If it has been reached, the next arrival tries again.
void Pipe::WakeOnce() {
    woken_ = woken_ || window_.Wake();
}

} // namespace testbed::chromium
