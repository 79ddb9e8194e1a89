// Tracing of a probe's HTTP headers.
#include "probe/header_trace.h"

#include <algorithm>
#include <cstring>
#include <string>

#include <wininet.h>

#include "du/string_utilities.h"
#include "support/implementation_words.h"
#include "support/trace.h"

namespace kelda {
namespace {

constexpr const char* kLineEnd = "\r\n";

/// True for a header whose value lets whoever reads it log in as the user.
bool HoldsCredentials(const std::string& line) {
    const std::string name = line.substr(0, line.find(':'));
    return _stricmp(name.c_str(), "Authorization") == 0 || _stricmp(name.c_str(), "Proxy-Authorization") == 0;
}

/// The line as it is traced: credentials are left out.
std::string Traceable(const std::string& line) {
    return HoldsCredentials(line) ? line.substr(0, line.find(':')) + ": (not traced)" : line;
}

/// Overwrites credentials where they stand, before anything copies them.
void BlankCredentials(std::string& headers) {
    for (std::size_t start = 0; start < headers.size();) {
        const std::size_t end = std::min(headers.find(kLineEnd, start), headers.size());
        const std::size_t colon = headers.find(':', start);
        if (colon < end && HoldsCredentials(headers.substr(start, colon - start))) {
            headers.replace(colon + 1, end - colon - 1, end - colon - 1, ' ');
        }
        start = end + std::strlen(kLineEnd);
    }
}

void TraceLines(const char* kind, const std::string& headers) {
    kBasicAuthenticationTrace.Info() << kind << " headers:";
    for (const std::string& line : du::StringSplit(headers.c_str(), kLineEnd)) {
        kBasicAuthenticationTrace.Info() << Traceable(line);
    }
}

void TraceHeaders(IWinInetHttpInfo& info, const char* kind, DWORD option) {
    DWORD size = 0;
    if (FAILED(info.QueryInfo(option, nullptr, &size, nullptr, nullptr))) {
        kBasicAuthenticationTrace.Info() << "Unable to retrieve headers";
        return;
    }
    std::string headers(size, '\0'); // 8-bit text, the terminator may or may not be counted
    info.QueryInfo(option, headers.data(), &size, nullptr, nullptr);
    BlankCredentials(headers);
    TraceLines(kind, headers);
}

} // namespace

void TraceHttpHeaders(IWinInetHttpInfo& info) {
    if (!ImplementationWordGiven("trace")) {
        return;
    }
    TraceHeaders(info, "Request", HTTP_QUERY_RAW_HEADERS_CRLF | HTTP_QUERY_FLAG_REQUEST_HEADERS);
    TraceHeaders(info, "Response", HTTP_QUERY_RAW_HEADERS_CRLF);
}

void TraceRefusedResponse(DWORD status, LPCWSTR headers) {
    if (!ImplementationWordGiven("trace")) {
        return;
    }
    kBasicAuthenticationTrace.Info() << "Server answered with HTTP status " << status;
    if (headers != nullptr) {
        TraceLines("Response", du::WideStrToUtf8(headers));
    }
}

} // namespace kelda
