// Kinds of resources, and what a client has changed.
#include "testbed/chromium/request_text.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "testbed/chromium/header_text.h"

namespace testbed::chromium {
namespace {

struct KindName {
    std::string_view name;
    ResourceKind kind;
};

constexpr std::array kKindNames = {
    KindName{"Document", ResourceKind::Document}, KindName{"Stylesheet", ResourceKind::Stylesheet},
    KindName{"Image", ResourceKind::Image},       KindName{"Media", ResourceKind::Media},
    KindName{"Font", ResourceKind::Font},         KindName{"Script", ResourceKind::Script},
    KindName{"XHR", ResourceKind::Fetch},         KindName{"Fetch", ResourceKind::Fetch},
    KindName{"EventSource", ResourceKind::Fetch}, KindName{"Ping", ResourceKind::Ping},
};

ResourceKind KindFrom(std::string_view name) {
    const auto found = std::find_if(kKindNames.begin(), kKindNames.end(),
                                    [&](const KindName& entry) { return entry.name == name; });
    return found == kKindNames.end() ? ResourceKind::Other : found->kind;
}

} // namespace

bool IsWeb(std::string_view url) {
    return url.starts_with("http:") || url.starts_with("https:");
}

Request RequestFrom(const Json& paused) {
    const Json& request = paused.at("request");
    Request result;
    result.url = request.at("url").get<std::string>();
    result.method = request.at("method").get<std::string>();
    result.kind = KindFrom(paused.at("resourceType").get_ref<const std::string&>());
    result.redirected = paused.contains("redirectedRequestId");
    result.headers = HeadersFrom(request.at("headers"));
    return result;
}

Json ContinueParameters(const Json& paused, const Headers& headers) {
    Json params = {{"requestId", paused.at("requestId")}};
    if (headers != HeadersFrom(paused.at("request").at("headers"))) {
        Json list = Json::array();
        for (const Header& header : headers) {
            list.push_back({{"name", header.name}, {"value", header.value}});
        }
        params["headers"] = std::move(list);
    }
    return params;
}

} // namespace testbed::chromium
