// The navigations of a page's main frame that have started and not ended. There can be two: one whose document is still
// loading, and one that this document, or somebody else, has started meanwhile.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "testbed/chromium/page_client.h"

namespace testbed::chromium {

/// @param text as Chromium gives it, "net::ERR_..." or "ERR_..."
NavigationError ErrorFromText(std::string_view text);

/// Pure bookkeeping: each function that ends navigations returns what is to be reported, in order.
class Navigations {
  public:
    /// @param loader Chromium's name for the navigation.
    /// @return what the client is to be asked; the id is that of the navigation if it is known already.
    NavigationStart Start(const std::string& loader, const std::string& url, bool redirected);

    /// Whether there is one whose document has not come yet.
    bool Underway() const;

    void HasStatus(const std::string& loader, int status);

    /// The navigation that is under way to this URL has been refused for a reason that its end will not tell.
    void Refuse(const std::string& url, NavigationError error);

    /// The navigation's document has replaced the old one, and with it whatever was still loading there.
    std::vector<NavigationOutcome> Commit(const std::string& loader);
    std::vector<NavigationOutcome> Load(const std::string& loader);
    std::vector<NavigationOutcome> Fail(const std::string& loader, NavigationError error);
    /// The frame loads no more: a document that has not run its load event never will.
    std::vector<NavigationOutcome> Stop();
    std::vector<NavigationOutcome> FailAll(NavigationError error);

  private:
    struct Open {
        std::string loader;
        NavigationOutcome outcome;
        bool committed = false;
        NavigationError refusal = NavigationError::None;
    };

    static NavigationError ErrorOf(const Open& open, NavigationError error);
    template <typename Chosen>
    std::vector<NavigationOutcome> End(NavigationError error, Chosen chosen);

    std::uint64_t lastId_ = 0;
    std::vector<Open> open_; // in the order of their starts
};

} // namespace testbed::chromium
