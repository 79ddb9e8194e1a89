// What the scripts of pages have to say.
#include "control.h"

#include "variant.h"

namespace legacy_control {

using nlohmann::json;

void Control::OnMessage(const json& message, const std::function<void(const std::string& text)>& reply) {
    const Self self = this;
    const auto kind = message.at("kind").get<std::string>();
    if (kind == "document") {
        OnNewDocument(message.at("url").get<std::string>());
    } else if (kind == "title") {
        OnTitle(message.at("text").get<std::string>());
    } else if (kind == "external") {
        const HostSite host = host_;
        host.CallExternal(message.at("name").get<std::string>(), message.at("arguments"));
    } else if (kind == "error") {
        OnScriptError({.message = message.at("message").get<std::string>(),
                       .url = message.at("url").get<std::string>(),
                       .line = message.at("line").get<LONG>(),
                       .character = message.at("character").get<LONG>()});
    } else if (kind == "link") {
        OnLink(message, reply);
    }
}

void Control::OnTitle(const std::string& title) {
    title_ = title;
    events_.TitleChange(title);
}

void Control::OnScriptError(const ScriptError& error) {
    const auto document = MakeDocument(Url(), title_, error);
    const HostSite host = host_;
    if (!host.TakesScriptError(document.Get()) && !closed_) {
        errorBox_.Show(error, window_ == nullptr ? nullptr : GetAncestor(window_->Handle(), GA_ROOT));
    }
}

/// The link waits in its page.
void Control::OnLink(const json& message, const std::function<void(const std::string& text)>& reply) {
    const bool follow = events_.BeforeNavigate(message.at("url").get<std::string>(), 0);
    reply(json{{"id", message.at("id")}, {"follow", follow}}.dump());
}

} // namespace legacy_control
