// Why a login did not succeed, in words.
#include "outcome.h"

#include <string_view>

#include "host_reference/tracing.h"

namespace viewer {
namespace {

constexpr std::string_view kStatusLine = "SessionAuthenticationComplete. status = ";

std::string StatusInWords(const std::string& status) {
    if (status.empty()) {
        return "the request could not be started";
    }
    if (status == "0") {
        return "the server gave no HTTP answer";
    }
    if (status == "1") {
        return "the server wants its web login form filled in";
    }
    if (status == "4") {
        return "the credential prompt was cancelled";
    }
    if (status == "5") {
        return "the server did not accept the credentials";
    }
    return "the request failed";
}

} // namespace

OutcomeListener::OutcomeListener() {
    host_reference::SetTraceSink(&OutcomeListener::OnTrace, this);
}

OutcomeListener::~OutcomeListener() {
    host_reference::SetTraceSink(nullptr, nullptr);
}

void OutcomeListener::OnTrace(void* context, const char* /*module*/, const char* /*component*/,
                              dp::TraceType type, const char* text) {
    auto& self = *static_cast<OutcomeListener*>(context);
    const std::string_view line = text;
    if (line.starts_with(kStatusLine)) {
        self.status_ = line.substr(kStatusLine.size());
    } else if (type == dp::TraceType::Failure && self.failure_.empty()) {
        self.failure_ = line; // the first says most: those that follow are its consequences
    }
}

std::string OutcomeListener::Explain() const {
    const std::string words = StatusInWords(status_);
    return failure_.empty() ? words : words + " (" + failure_ + ")";
}

} // namespace viewer
