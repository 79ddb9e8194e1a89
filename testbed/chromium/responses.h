// The answers to a page's requests. Chromium tells about each in up to four events: what was asked and what was answered, and
// for both what really went over the wire. The first two come from another source than the other two, so that only either
// pair is sure to be in order.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "testbed/chromium/connection.h"
#include "testbed/chromium/page_client.h"

namespace testbed::chromium {

/// Pure bookkeeping: what is complete is returned, in order.
class Responses {
  public:
    /// That many requests may begin while one waits for its answer, before that one is forgotten: of some Chromium never
    /// tells the end.
    static constexpr std::size_t kMostRemembered = 4096;

    /// @param mainFrame Chromium's name for it.
    explicit Responses(std::string mainFrame) : mainFrame_(std::move(mainFrame)) {}

    /// Takes note of an event, if it is about requests.
    std::vector<Response> OnEvent(const std::string& method, const Json& params);

    /// Whether an event can be the second half of an answer.
    static bool IsOfTheWire(const std::string& method);

    /// The number of a navigation's answer whose second half has not come yet. What came after its first half is not to be
    /// told before it.
    std::optional<std::uint64_t> Late() const;
    /// That second half will not come: if it does, it is taken for that of the request's next answer.
    std::vector<Response> GiveUp(std::uint64_t number);

    /// How many requests it keeps something of.
    std::size_t Remembered() const { return exchanges_.size(); }

  private:
    /// A request and its answer, that of a redirect or the last one.
    struct Hop {
        Response response; // as far as it is known without the wire
        bool navigation = false;
        std::uint64_t number = 0; // of the answer; 0 while there is none
        bool wired = false;       // the wire's part of the answer is to come
        bool cached = false;      // it is not, whatever Chromium promises
    };
    struct WireAnswer {
        int status = 0;
        std::string text;
        Headers headers;
    };
    /// All that goes by one name of Chromium's.
    struct Exchange {
        std::deque<Hop> hops;
        std::deque<Headers> sent;
        std::deque<WireAnswer> answers;
        bool ended = false;
    };

    Exchange& Find(const std::string& request);
    void AddRequest(const Json& params);
    void AddAnswer(const std::string& request, const Json& response, bool wired);
    void SetCached(const std::string& request);
    void AddWireAnswer(const Json& params);
    void End(const std::string& request);
    std::vector<Response> Take(const std::string& request);
    static Response Complete(Exchange& exchange);
    static void TakeSent(Exchange& exchange, Response& response);

    std::string mainFrame_;
    std::uint64_t lastNumber_ = 0;
    std::map<std::string, Exchange> exchanges_;
    std::deque<std::string> order_; // of the last ones that have begun
};

} // namespace testbed::chromium
