// The channel to Chromium: messages, whole ones, in both directions.
#pragma once

#include <deque>
#include <memory>
#include <string>
#include <string_view>

#include <windows.h>

#include "testbed/chromium/message_window.h"
#include "testbed/chromium/socket_pair.h"

namespace testbed::chromium {

/// Belongs to one thread; another one, of its own, reads.
class Pipe {
  public:
    /// @param status read when `channel` has come to its end; with its end all is over.
    /// @param arrived called from the message loop when there is something to `Take`.
    /// @throws std::system_error if there is no window or no thread to be had.
    Pipe(Socket channel, Socket status, std::function<void()> arrived);

    /// Closes the channel, and with it Chromium: one that does not end by itself is killed by its launcher.
    ~Pipe();
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    /// Adds what has arrived.
    /// @return false when that is the end: nothing will arrive any more.
    bool Take(std::deque<std::string>& messages);

    /// Sends a message, or nothing if the other end has gone. It waits only if Chromium does not read at all, and then gives
    /// the channel up after five seconds.
    void Send(std::string_view message);

    /// Has `arrived` called.
    void Wake() const { window_.Wake(); }

    /// Closes the channel; what has arrived, and the status, can still be taken.
    void Close() const;

    /// Waits until Chromium has ended.
    /// @return false if it has not in that time.
    bool WaitForEnd(DWORD milliseconds) const;

  private:
    static unsigned __stdcall ReadAll(void* self) noexcept;
    void Read(const Socket& socket);
    void Deliver(std::string&& message);
    void DeliverEnd();
    void WakeOnce();

    Socket channel_;
    Socket status_;
    MessageWindow window_;
    SRWLOCK lock_ = SRWLOCK_INIT; // guards the next three
    std::deque<std::string> arrived_;
    bool ended_ = false;
    bool woken_ = false;                                // and nothing taken since
    std::unique_ptr<void, decltype(&CloseHandle)> end_; // an event that is set when all has been read
    // Not a std::thread: mingw's keeps an event for good when one ends while another begins, and handles are counted.
    std::unique_ptr<void, decltype(&CloseHandle)> reader_;
};

} // namespace testbed::chromium
