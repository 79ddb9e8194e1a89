// A table of weak references: it keeps nothing alive.
#include "live_environments.h"

#include <map>
#include <mutex>

#include <windows.h>

namespace webview2_runtime {
namespace {

struct IgnoringCase {
    bool operator()(const std::wstring& left, const std::wstring& right) const {
        return CompareStringOrdinal(left.c_str(), -1, right.c_str(), -1, TRUE) == CSTR_LESS_THAN;
    }
};

} // namespace

LiveSettings UseSettings(const std::wstring& folder, const EnvironmentSettings& settings) {
    static std::mutex mutex;
    static std::map<std::wstring, std::weak_ptr<const EnvironmentSettings>, IgnoringCase> table;
    const std::scoped_lock lock(mutex);
    std::erase_if(table, [](const auto& entry) { return entry.second.expired(); });
    if (const auto found = table.find(folder); found != table.end()) {
        LiveSettings live = found->second.lock();
        return live && *live == settings ? live : nullptr;
    }
    auto live = std::make_shared<const EnvironmentSettings>(settings);
    table[folder] = live;
    return live;
}

} // namespace webview2_runtime
