// Whatever is called may close or destroy whatever there is, this connection's owners included, so nothing here is held by
// reference over a call.
#include "testbed/chromium/connection.h"

#include <exception>
#include <system_error>
#include <utility>

#include "testbed/chromium/message_text.h"

namespace testbed::chromium {
namespace {

/// How long Chromium has for ending in good order, and then for ending without a channel.
constexpr DWORD kEndMilliseconds = 2000;

/// True for as long as it lives.
class Flagged {
  public:
    explicit Flagged(bool& flag) : flag_(flag) { flag_ = true; }
    ~Flagged() { flag_ = false; }
    Flagged(const Flagged&) = delete;
    Flagged& operator=(const Flagged&) = delete;

  private:
    bool& flag_;
};

/// Chromium has said something in a form that it is not known to use; nobody can do anything with it.
void ReportMisunderstanding(const std::exception& problem) {
    OutputDebugStringA(problem.what());
}

} // namespace

std::shared_ptr<Connection> Connection::Start(const Profile& profile, DWORD& error) try {
    auto connection = std::make_shared<Connection>();
    SocketPair channel = MakeSocketPair();
    SocketPair status = MakeSocketPair();
    if (!channel.ours.Valid() || !status.ours.Valid()) {
        error = static_cast<DWORD>(WSAGetLastError());
        return nullptr;
    }
    error = StartChromium(profile, channel.theirs, status.theirs);
    if (error != ERROR_SUCCESS) {
        return nullptr;
    }
    connection->pipe_ = std::make_unique<Pipe>(std::move(channel.ours), std::move(status.ours),
                                               [raw = connection.get()] { raw->OnArrived(); });
    return connection;
} catch (const std::system_error& problem) {
    error = static_cast<DWORD>(problem.code().value());
    return nullptr;
}

Connection::~Connection() {
    End();
}

void Connection::Send(const std::string& method, Json params, const std::string& session, Reply reply) {
    if (pipe_ == nullptr) {
        return;
    }
    if (lost_) {
        refused_.push_back(std::move(reply));
        pipe_->Wake();
        return;
    }
    Json message = {{"id", ++lastId_}, {"method", method}, {"params", std::move(params)}};
    if (!session.empty()) {
        message["sessionId"] = session;
    }
    replies_[lastId_] = {session, std::move(reply)};
    pipe_->Send(message.dump(-1, ' ', false, Json::error_handler_t::replace));
}

void Connection::Attach(const std::string& session, const std::weak_ptr<EventSink>& sink) {
    sinks_[session] = sink;
}

void Connection::Detach(const std::string& session) {
    sinks_.erase(session);
    std::erase_if(events_,
                  [&](const Event& event) { return event.session == session && !event.method.empty(); });
    TakeReplies([&](const PendingReply& pending) { return pending.session == session; });
}

void Connection::FailReplies(const std::string& session) {
    for (const Reply& reply :
         TakeReplies([&](const PendingReply& pending) { return pending.session == session; })) {
        reply(nullptr);
    }
}

void Connection::Queue(const std::string& session, const std::string& method, Json params) {
    events_.push_back({session, method, std::move(params)});
    if (pipe_ != nullptr) {
        pipe_->Wake();
    }
}

void Connection::AskToEnd() noexcept {
    try {
        Send("Browser.close", Json::object(), {});
    } catch (const std::exception&) {
        // There was no memory for asking; the closed channel ends Chromium as well.
        pipe_->Close();
    }
    if (!pipe_->WaitForEnd(kEndMilliseconds)) {
        pipe_->Close();
        pipe_->WaitForEnd(kEndMilliseconds);
    }
}

void Connection::End() noexcept {
    if (pipe_ == nullptr) {
        return;
    }
    if (!lost_) {
        AskToEnd();
    }
    pipe_.reset();
    arrived_.clear();
    events_.clear();
    sinks_.clear();
    // What they hold may come back here.
    const auto replies = std::exchange(replies_, {});
    const auto refused = std::exchange(refused_, {});
}

void Connection::OnArrived() {
    const auto self = shared_from_this();
    const bool more = pipe_->Take(arrived_);
    // In members, not in locals: a message loop that is run by what is called here goes on with them.
    while (!arrived_.empty()) {
        const std::string text = std::move(arrived_.front());
        arrived_.pop_front();
        Receive(text);
    }
    if (!more && pipe_ != nullptr && !lost_) {
        Lose();
    }
    for (const Reply& reply : std::exchange(refused_, {})) {
        if (reply) {
            reply(nullptr);
        }
    }
    DispatchEvents();
}

void Connection::Receive(const std::string& text) try {
    const Json message = ParseMessage(text);
    if (message.contains("id")) {
        ReceiveReply(message);
        return;
    }
    Event event{message.value("sessionId", ""), message.at("method").get<std::string>(),
                message.value("params", Json::object())};
    if (event.method == kExitedEvent) {
        exitStatus_ = event.params.at("status").get<int>();
    } else if (event.method == kPictureEvent) {
        Dispatch(event);
    } else {
        if (event.method == kCrashedEvent) {
            FailReplies(event.session);
        }
        events_.push_back(std::move(event));
        DispatchEvents();
    }
} catch (const std::exception& problem) {
    ReportMisunderstanding(problem);
}

void Connection::ReceiveReply(const Json& message) {
    const auto found = replies_.find(message.at("id").get<std::int64_t>());
    if (found == replies_.end()) {
        return;
    }
    const Reply reply = std::move(found->second.reply);
    replies_.erase(found);
    if (reply) {
        const auto result = message.find("result");
        reply(result == message.end() ? nullptr : &*result);
    }
}

void Connection::DispatchEvents() {
    if (dispatching_) {
        return;
    }
    const Flagged flagged(dispatching_);
    while (!events_.empty()) {
        const Event event = std::move(events_.front());
        events_.pop_front();
        Dispatch(event);
    }
}

void Connection::Dispatch(const Event& event) try {
    if (event.method.empty()) {
        for (const auto& entry : std::map(sinks_)) {
            if (const auto sink = entry.second.lock()) {
                sink->OnConnectionLost();
            }
        }
        return;
    }
    const auto found = sinks_.find(event.session);
    if (const auto sink = found == sinks_.end() ? nullptr : found->second.lock()) {
        sink->OnEvent(event.method, event.params);
    }
} catch (const std::exception& problem) {
    ReportMisunderstanding(problem);
}

void Connection::Lose() {
    lost_ = true;
    events_.push_back({});
    for (const Reply& reply : TakeReplies([](const PendingReply&) { return true; })) {
        reply(nullptr);
    }
}

std::vector<Connection::Reply>
Connection::TakeReplies(const std::function<bool(const PendingReply&)>& chosen) {
    std::vector<Reply> taken;
    for (auto it = replies_.begin(); it != replies_.end();) {
        if (!chosen(it->second)) {
            ++it;
            continue;
        }
        if (it->second.reply) {
            taken.push_back(std::move(it->second.reply));
        }
        it = replies_.erase(it);
    }
    return taken;
}

} // namespace testbed::chromium
