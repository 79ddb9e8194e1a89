// Which navigation an event belongs to, and how it ends.
#include "testbed/chromium/navigations.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace testbed::chromium {
namespace {

constexpr int kFirstFailedStatus = 400;
constexpr int kUnauthorized = 401;

struct ErrorName {
    std::string_view text; // after "net::ERR_"
    NavigationError error;
};

constexpr std::array kErrorNames = {
    ErrorName{"ABORTED", NavigationError::Aborted},
    ErrorName{"CONNECTION_REFUSED", NavigationError::CannotConnect},
    ErrorName{"CONNECTION_FAILED", NavigationError::CannotConnect},
    ErrorName{"ADDRESS_UNREACHABLE", NavigationError::CannotConnect},
    ErrorName{"NAME_NOT_RESOLVED", NavigationError::HostNameNotResolved},
    ErrorName{"EMPTY_RESPONSE", NavigationError::ServerUnreachable},
    ErrorName{"CONNECTION_CLOSED", NavigationError::ServerUnreachable},
    ErrorName{"CONNECTION_RESET", NavigationError::ConnectionReset},
    ErrorName{"INTERNET_DISCONNECTED", NavigationError::Disconnected},
    ErrorName{"TIMED_OUT", NavigationError::Timeout},
    ErrorName{"CONNECTION_TIMED_OUT", NavigationError::Timeout},
    ErrorName{"TOO_MANY_REDIRECTS", NavigationError::RedirectFailed},
    ErrorName{"CERT_COMMON_NAME_INVALID", NavigationError::CertificateCommonNameIncorrect},
    ErrorName{"CERT_DATE_INVALID", NavigationError::CertificateExpired},
    ErrorName{"CERT_REVOKED", NavigationError::CertificateRevoked},
    ErrorName{"INVALID_AUTH_CREDENTIALS", NavigationError::ValidAuthenticationRequired},
    ErrorName{"HTTP_RESPONSE_CODE_FAILURE", NavigationError::HttpStatus},
};

} // namespace

NavigationError ErrorFromText(std::string_view text) {
    for (const std::string_view prefix : {"net::", "ERR_"}) {
        text.remove_prefix(text.starts_with(prefix) ? prefix.size() : 0);
    }
    const auto found = std::find_if(kErrorNames.begin(), kErrorNames.end(),
                                    [&](const ErrorName& name) { return name.text == text; });
    if (found != kErrorNames.end()) {
        return found->error;
    }
    return text.starts_with("CERT_") ? NavigationError::CertificateInvalid : NavigationError::Unknown;
}

NavigationStart Navigations::Start(const std::string& loader, const std::string& url, bool redirected) {
    auto found = std::ranges::find(open_, loader, &Open::loader);
    if (found == open_.end()) {
        found = open_.insert(found, Open{loader, {}});
        found->outcome.id = ++lastId_;
    }
    found->outcome.url = url;
    return {found->outcome.id, url, redirected};
}

bool Navigations::Underway() const {
    return !std::ranges::all_of(open_, &Open::committed);
}

void Navigations::HasStatus(const std::string& loader, int status) {
    if (const auto found = std::ranges::find(open_, loader, &Open::loader); found != open_.end()) {
        found->outcome.httpStatus = status;
    }
}

void Navigations::Refuse(const std::string& url, NavigationError error) {
    for (Open& open : open_) {
        if (!open.committed && open.outcome.url == url) {
            open.refusal = error;
        }
    }
}

std::vector<NavigationOutcome> Navigations::Commit(const std::string& loader) {
    if (const auto found = std::ranges::find(open_, loader, &Open::loader); found != open_.end()) {
        found->committed = true;
    }
    return End(NavigationError::Aborted,
               [&](const Open& open) { return open.committed && open.loader != loader; });
}

std::vector<NavigationOutcome> Navigations::Load(const std::string& loader) {
    if (std::ranges::find(open_, loader, &Open::loader) == open_.end()) {
        return {};
    }
    // Whether anything has said so or not: what is loaded has been committed.
    auto ended = Commit(loader);
    const auto loaded = End(NavigationError::None, [&](const Open& open) { return open.loader == loader; });
    ended.insert(ended.end(), loaded.begin(), loaded.end());
    return ended;
}

std::vector<NavigationOutcome> Navigations::Fail(const std::string& loader, NavigationError error) {
    return End(error, [&](const Open& open) { return open.loader == loader; });
}

std::vector<NavigationOutcome> Navigations::Stop() {
    return End(NavigationError::Aborted, [](const Open& open) { return open.committed; });
}

std::vector<NavigationOutcome> Navigations::FailAll(NavigationError error) {
    return End(error, [](const Open&) { return true; });
}

template <typename Chosen>
std::vector<NavigationOutcome> Navigations::End(NavigationError error, Chosen chosen) {
    std::vector<NavigationOutcome> ended;
    for (Open& open : open_) {
        if (chosen(open)) {
            open.outcome.error = ErrorOf(open, error);
            open.outcome.success = open.outcome.error == NavigationError::None;
            ended.push_back(open.outcome);
        }
    }
    std::erase_if(open_, chosen);
    return ended;
}

/// @param error how it ends.
NavigationError Navigations::ErrorOf(const Open& open, NavigationError error) {
    if (error == NavigationError::Aborted && open.refusal != NavigationError::None) {
        return open.refusal;
    }
    if (error != NavigationError::None || open.outcome.httpStatus < kFirstFailedStatus) {
        return error;
    }
    return open.outcome.httpStatus == kUnauthorized ? NavigationError::ValidAuthenticationRequired
                                                    : NavigationError::HttpStatus;
}

} // namespace testbed::chromium
