// The binding, the script that captures it, and replies into the right document.
#include "testbed/chromium/script_bridge.h"

namespace testbed::chromium {

std::string ScriptBridge::DocumentScript(const std::string& shim) {
    // The page is not to find the way out by itself.
    const std::string name = kBinding;
    return "(() => { const send = globalThis." + name + "; delete globalThis." + name +
           "; const receive = (" + shim + "\n)((text) => send(String(text)));" +
           "Object.defineProperty(globalThis, '__testbedReceive', { value: receive }); })()";
}

bool ScriptBridge::OnEvent(const std::string& method, const Json& params) {
    if (method == "Runtime.executionContextCreated") {
        const Json& context = params.at("context");
        contexts_[context.at("id").get<int>()] = context.at("uniqueId").get<std::string>();
    } else if (method == "Runtime.executionContextDestroyed") {
        contexts_.erase(params.at("executionContextId").get<int>());
    } else if (method == "Runtime.executionContextsCleared") {
        contexts_.clear();
    } else {
        return false;
    }
    return true;
}

std::optional<BridgeMessage> ScriptBridge::MessageFrom(const Json& params) const {
    if (params.at("name") != kBinding) {
        return std::nullopt;
    }
    const auto context = contexts_.find(params.at("executionContextId").get<int>());
    return BridgeMessage{params.at("payload").get<std::string>(),
                         context == contexts_.end() ? std::string() : context->second};
}

Json ScriptBridge::Delivery(const std::string& context, const std::string& text) {
    const std::string literal = Json(text).dump(-1, ' ', false, Json::error_handler_t::replace);
    return {{"expression", "__testbedReceive(" + literal + ")"}, {"uniqueContextId", context}};
}

} // namespace testbed::chromium
