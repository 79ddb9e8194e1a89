// Two pairs of queues, and which answer is complete.
#include "testbed/chromium/responses.h"

#include <algorithm>
#include <utility>

#include "testbed/chromium/header_text.h"
#include "testbed/chromium/request_text.h"

namespace testbed::chromium {
namespace {

constexpr const char* kSentEvent = "Network.requestWillBeSentExtraInfo";
constexpr const char* kWireAnswerEvent = "Network.responseReceivedExtraInfo";

/// Behind the number in the first line.
std::string ReasonIn(const std::string& head) {
    const std::string line = head.substr(0, head.find_first_of("\r\n"));
    const std::size_t number = line.find(' ');
    const std::size_t reason = number == std::string::npos ? number : line.find(' ', number + 1);
    return reason == std::string::npos ? std::string() : line.substr(reason + 1);
}

} // namespace

bool Responses::IsOfTheWire(const std::string& method) {
    return method == kSentEvent || method == kWireAnswerEvent;
}

std::vector<Response> Responses::OnEvent(const std::string& method, const Json& params) {
    if (!method.starts_with("Network.") || !params.contains("requestId")) {
        return {};
    }
    const auto request = params.at("requestId").get<std::string>();
    if (method == "Network.requestWillBeSent") {
        AddRequest(params);
    } else if (method == kSentEvent) {
        Find(request).sent.push_back(HeadersOnTheWire(params.at("headers"), {}));
    } else if (method == "Network.requestServedFromCache") {
        SetCached(request);
    } else if (method == "Network.responseReceived") {
        AddAnswer(request, params.at("response"), params.value("hasExtraInfo", false));
    } else if (method == kWireAnswerEvent) {
        AddWireAnswer(params);
    } else if (method == "Network.loadingFinished" || method == "Network.loadingFailed") {
        End(request);
    }
    return Take(request);
}

/// Without this, answers of the wire would gather whose requests have ended before.
Responses::Exchange& Responses::Find(const std::string& request) {
    if (!exchanges_.contains(request)) {
        order_.push_back(request);
        if (order_.size() > kMostRemembered) {
            exchanges_.erase(order_.front());
            order_.pop_front();
        }
    }
    return exchanges_[request];
}

void Responses::AddRequest(const Json& params) {
    const auto id = params.at("requestId").get<std::string>();
    if (params.contains("redirectResponse")) {
        AddAnswer(id, params.at("redirectResponse"), params.value("redirectHasExtraInfo", false));
    }
    const Json& request = params.at("request");
    Hop hop;
    hop.response.url = request.at("url").get<std::string>();
    if (!IsWeb(hop.response.url)) {
        return;
    }
    hop.response.method = request.at("method").get<std::string>();
    hop.response.requestHeaders = HeadersFrom(request.at("headers"));
    hop.navigation = params.value("type", "") == "Document" && params.value("frameId", "") == mainFrame_;
    Find(id).hops.push_back(std::move(hop));
}

void Responses::AddAnswer(const std::string& request, const Json& response, bool wired) {
    const auto found = exchanges_.find(request);
    // A stream of pictures is answered again and again.
    if (found == exchanges_.end() || found->second.hops.empty() || found->second.hops.back().number != 0) {
        return;
    }
    Hop& hop = found->second.hops.back();
    hop.number = ++lastNumber_;
    hop.wired = wired && !hop.cached;
    hop.response.status = response.at("status").get<int>();
    hop.response.reason = response.value("statusText", "");
    hop.response.headers = HeadersOnTheWire(response.at("headers"), {});
}

/// Answers from memory are those of an earlier request, and are said to have the same second half; but none comes.
void Responses::SetCached(const std::string& request) {
    if (const auto found = exchanges_.find(request);
        found != exchanges_.end() && !found->second.hops.empty()) {
        found->second.hops.back().cached = true;
    }
}

void Responses::AddWireAnswer(const Json& params) {
    const auto text = params.value("headersText", "");
    Find(params.at("requestId").get<std::string>())
        .answers.push_back(
            {params.at("statusCode").get<int>(), text, HeadersOnTheWire(params.at("headers"), text)});
}

/// An answer that has come is still told when its second half is there.
void Responses::End(const std::string& request) {
    if (const auto found = exchanges_.find(request); found != exchanges_.end()) {
        found->second.ended = true;
        std::erase_if(found->second.hops, [](const Hop& hop) { return hop.number == 0; });
    }
}

std::vector<Response> Responses::Take(const std::string& request) {
    std::vector<Response> complete;
    const auto found = exchanges_.find(request);
    if (found == exchanges_.end()) {
        return complete;
    }
    Exchange& exchange = found->second;
    while (!exchange.hops.empty() && exchange.hops.front().number != 0 &&
           (!exchange.hops.front().wired || !exchange.answers.empty())) {
        complete.push_back(Complete(exchange));
    }
    if (exchange.ended && exchange.hops.empty()) {
        exchanges_.erase(found);
    }
    return complete;
}

void Responses::TakeSent(Exchange& exchange, Response& response) {
    if (!exchange.sent.empty()) {
        response.requestHeaders = std::move(exchange.sent.front());
        exchange.sent.pop_front();
    }
}

Response Responses::Complete(Exchange& exchange) {
    Hop hop = std::move(exchange.hops.front());
    exchange.hops.pop_front();
    Response& response = hop.response;
    if (hop.wired) {
        TakeSent(exchange, response);
        WireAnswer answer = std::move(exchange.answers.front());
        exchange.answers.pop_front();
        // Chromium has got no more than that the page in its cache is still good, and answers with that one.
        if (answer.status != response.status) {
            response.status = answer.status;
            response.reason = ReasonIn(answer.text);
        }
        response.headers = std::move(answer.headers);
    }
    return std::move(response);
}

std::optional<std::uint64_t> Responses::Late() const {
    for (const auto& [request, exchange] : exchanges_) {
        if (!exchange.hops.empty() && exchange.hops.front().navigation && exchange.hops.front().number != 0) {
            return exchange.hops.front().number;
        }
    }
    return std::nullopt;
}

std::vector<Response> Responses::GiveUp(std::uint64_t number) {
    for (auto& [request, exchange] : exchanges_) {
        if (!exchange.hops.empty() && exchange.hops.front().number == number) {
            Hop& hop = exchange.hops.front();
            hop.wired = false;
            TakeSent(exchange, hop.response);
            return Take(std::string(request));
        }
    }
    return {};
}

} // namespace testbed::chromium
