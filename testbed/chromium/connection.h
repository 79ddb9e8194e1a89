// One Chromium in the terms of its protocol: commands with their replies, and events. Knows nothing of what they mean.
//
// Replies and pictures are handed on as they arrive, and what a crashed page still owes fails at once. Other events wait while
// one of them is being handled, even if its handler runs a message loop.
#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <windows.h>

#include <nlohmann/json.hpp>

#include "testbed/chromium/launch.h"
#include "testbed/chromium/pipe.h"

namespace testbed::chromium {

using Json = nlohmann::json;

constexpr const char* kPictureEvent = "Page.screencastFrame";
constexpr const char* kCrashedEvent = "Inspector.targetCrashed";

/// Whoever listens to a session. Kept alive while it is called.
class EventSink {
  public:
    virtual ~EventSink() = default;
    virtual void OnEvent(const std::string& method, const Json& params) = 0;
    /// Chromium has ended; all replies have failed by then. An event like others.
    virtual void OnConnectionLost() = 0;

  protected:
    EventSink() = default;
    EventSink(const EventSink&) = default;
    EventSink& operator=(const EventSink&) = default;
};

/// Belongs to one thread, whose message loop it lives by.
class Connection : public std::enable_shared_from_this<Connection> {
  public:
    /// @param result null if the command failed.
    using Reply = std::function<void(const Json* result)>;

    /// Starts Chromium on a folder.
    /// @return null and a Win32 error if that fails.
    static std::shared_ptr<Connection> Start(const Profile& profile, DWORD& error);

    Connection() = default;
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// @param session empty for the browser as a whole.
    /// @param reply called once, never inside this call, unless the session is detached or the connection ended before.
    void Send(const std::string& method, Json params, const std::string& session, Reply reply = {});

    /// Tells a session's events to `sink`.
    void Attach(const std::string& session, const std::weak_ptr<EventSink>& sink);
    /// Drops what the session still waits for: its replies, uncalled, and its events.
    void Detach(const std::string& session);

    /// Fails what the session still waits for; replies that come yet are ignored.
    void FailReplies(const std::string& session);

    /// Adds an event as if Chromium had sent it.
    void Queue(const std::string& session, const std::string& method, Json params);

    bool Alive() const { return pipe_ != nullptr && !lost_; }
    /// How Chromium has ended, if it has and could tell; see launch.h.
    std::optional<int> ExitStatus() const { return exitStatus_; }

    /// Asks Chromium to end, waits for that a bounded time, and drops all that waits. Nothing is called any more.
    void End() noexcept;

  private:
    struct PendingReply {
        std::string session;
        Reply reply;
    };
    struct Event {
        std::string session;
        std::string method; // empty: the connection is lost
        Json params;
    };

    void OnArrived();
    void Receive(const std::string& text);
    void ReceiveReply(const Json& message);
    void DispatchEvents();
    void Dispatch(const Event& event);
    void Lose();
    void AskToEnd() noexcept;
    std::vector<Reply> TakeReplies(const std::function<bool(const PendingReply&)>& chosen);

    SocketLibrary library_;
    std::unique_ptr<Pipe> pipe_; // null once it has ended
    std::deque<std::string> arrived_;
    std::deque<Event> events_;
    bool dispatching_ = false;
    bool lost_ = false;
    std::optional<int> exitStatus_;
    std::int64_t lastId_ = 0;
    std::map<std::int64_t, PendingReply> replies_;
    std::vector<Reply> refused_; // of commands that came after the end
    std::map<std::string, std::weak_ptr<EventSink>> sinks_;
};

} // namespace testbed::chromium
