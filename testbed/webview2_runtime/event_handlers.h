// The handlers of one event. They are called in the order of their registration; each is held by reference until it is
// removed, and may remove itself or others, or close the web view, while it runs.
#pragma once

#include <algorithm>
#include <atomic>
#include <vector>

#include <windows.h>

#include <eventtoken.h>
#include <wrl/client.h>

namespace webview2_runtime {

/// Different for each registration of the process, whatever the event; never 0.
inline EventRegistrationToken NextToken() {
    static std::atomic<__int64> last = 0;
    return {++last};
}

/// Belongs to the thread of its web view, which stays alive while `Raise` runs.
template <typename Handler>
class EventHandlers {
  public:
    HRESULT Add(Handler* handler, EventRegistrationToken* token) {
        if (handler == nullptr || token == nullptr) {
            return E_POINTER;
        }
        *token = NextToken();
        entries_.push_back({*token, handler});
        return S_OK;
    }

    /// A token that is not registered changes nothing.
    void Remove(EventRegistrationToken token) {
        const auto found = Find(token);
        if (found != entries_.end()) {
            // What the release of a handler may call must find the registry as it will be.
            const Entry removed = *found;
            entries_.erase(found);
        }
    }

    bool Empty() const { return entries_.empty(); }
    void Clear() { std::vector<Entry>().swap(entries_); }

    /// Handlers that are removed meanwhile are left out; those that are added are not called yet.
    template <typename Sender, typename Arguments>
    void Raise(Sender* sender, Arguments* arguments) {
        const std::vector<Entry> registered = entries_;
        for (const Entry& entry : registered) {
            if (Find(entry.token) != entries_.end()) {
                entry.handler->Invoke(sender, arguments);
            }
        }
    }

  private:
    struct Entry {
        EventRegistrationToken token;
        Microsoft::WRL::ComPtr<Handler> handler;
    };

    auto Find(EventRegistrationToken token) {
        return std::ranges::find(entries_, token.value, [](const Entry& entry) { return entry.token.value; });
    }

    std::vector<Entry> entries_;
};

} // namespace webview2_runtime
