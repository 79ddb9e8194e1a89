// The way between the scripts of documents and the client.
#pragma once

#include <map>
#include <optional>
#include <string>

#include "testbed/chromium/connection.h"

namespace testbed::chromium {

/// What a bridge's script sends.
struct BridgeMessage {
    std::string text;
    std::string context; ///< of the document that it is from; empty if that has gone
};

/// Knows the documents that could be answered.
class ScriptBridge {
  public:
    /// The function that leads out of a document, until the script below has taken it.
    static constexpr const char* kBinding = "__testbedSend";
    /// The script that puts a shim into each document; see `Page::InstallBridge`.
    static std::string DocumentScript(const std::string& shim);

    /// Takes note of the documents that come and go. @return whether the event was about that.
    bool OnEvent(const std::string& method, const Json& params);

    /// @param params of Runtime.bindingCalled.
    /// @return nothing if it is no message of the bridge.
    std::optional<BridgeMessage> MessageFrom(const Json& params) const;

    /// Parameters of the Runtime.evaluate that hands a text to a document.
    static Json Delivery(const std::string& context, const std::string& text);

  private:
    std::map<int, std::string> contexts_; // by number, which is used again, the name, which is not
};

} // namespace testbed::chromium
