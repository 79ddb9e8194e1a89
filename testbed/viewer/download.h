// Downloads one document through the system's URL-moniker stack, as a host does once it is authenticated.
#pragma once

#include <cstdint>
#include <string>

namespace viewer {

enum class DownloadOutcome { Done, NotServed, NotWritten };

struct DownloadResult {
    DownloadOutcome outcome = DownloadOutcome::NotServed;
    std::uint64_t bytes = 0;
    std::string reason; ///< One phrase, where it is not `Done`.
};

/// Binds to `url` (UTF-8) on the calling thread, with COM initialised there, and writes the body to `file`, which is
/// left alone unless all of the document has arrived.
DownloadResult Download(const std::string& url, const std::wstring& file);

} // namespace viewer
