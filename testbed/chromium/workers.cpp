// A sink for each worker, which passes on what the page wants to know.
#include "testbed/chromium/workers.h"

#include <utility>

namespace testbed::chromium {
namespace {

class WorkerEvents final : public EventSink {
  public:
    explicit WorkerEvents(std::weak_ptr<EventSink> page) : page_(std::move(page)) {}

    void OnEvent(const std::string& method, const Json& params) override {
        const auto page = page_.lock();
        if (page != nullptr && (method.starts_with("Network.") || method.starts_with("Target."))) {
            page->OnEvent(method, params);
        }
    }
    void OnConnectionLost() override {}

  private:
    std::weak_ptr<EventSink> page_;
};

} // namespace

Workers::~Workers() {
    for (const auto& [session, sink] : sinks_) {
        connection_->Detach(session);
    }
}

Json Workers::Attachment() {
    return {{"autoAttach", true},
            {"waitForDebuggerOnStart", true},
            {"flatten", true},
            {"filter", Json::array({{{"type", "worker"}}})}};
}

void Workers::Add(const Json& attached, const std::weak_ptr<EventSink>& page) {
    const auto session = attached.at("sessionId").get<std::string>();
    const auto sink = std::make_shared<WorkerEvents>(page);
    sinks_[session] = sink;
    connection_->Attach(session, sink);
    connection_->Send("Network.enable", Json::object(), session);
    connection_->Send("Target.setAutoAttach", Attachment(), session);
    connection_->Send("Runtime.runIfWaitingForDebugger", Json::object(), session);
}

void Workers::Remove(const Json& detached) {
    const auto session = detached.at("sessionId").get<std::string>();
    connection_->Detach(session);
    sinks_.erase(session);
}

} // namespace testbed::chromium
