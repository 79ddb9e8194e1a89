// Finds what was written by name and value, and each of it for one cookie of the store only: the store may hold the
// same name and value for several paths.
#include "cookie_table.h"

#include <optional>
#include <set>

namespace windows_gaps {

void CookieTable::Remember(const CookieDetails& cookie) {
    cookies_.insert_or_assign(KeyOf(cookie), cookie);
}

void CookieTable::Forget(const CookieDetails& cookie) {
    cookies_.erase(KeyOf(cookie));
}

std::vector<CookieDetails> CookieTable::Describe(const std::vector<StoredCookie>& stored,
                                                 const CookieAddress& address, DWORD serverFlags) const {
    std::set<const CookieDetails*> described;
    const auto find = [&](const StoredCookie& cookie) -> const CookieDetails* {
        const std::wstring name = InLowerCase(cookie.name);
        for (auto known = cookies_.lower_bound({name, {}, {}});
             known != cookies_.end() && known->first.name == name; ++known) {
            const auto& [key, details] = *known;
            // The store has dropped what is over: what it returns is another's, a server's.
            if (!details.IsOver() && details.SentValue() == cookie.value &&
                DomainCovers(key.domain, address.host) && PathCovers(key.path, address.path) &&
                described.insert(&details).second) {
                return &details;
            }
        }
        return nullptr;
    };

    std::vector<CookieDetails> result;
    for (const StoredCookie& cookie : stored) {
        const CookieDetails* const known = find(cookie);
        result.push_back(known != nullptr ? *known
                                          : CookieDetails{.name = cookie.name,
                                                          .value = cookie.value,
                                                          .domain = address.host,
                                                          .path = L"/",
                                                          .flags = serverFlags,
                                                          .expires = std::nullopt});
    }
    return result;
}

CookieTable::Key CookieTable::KeyOf(const CookieDetails& cookie) {
    return {InLowerCase(cookie.SentName()), BareDomain(cookie.domain), InLowerCase(cookie.path)};
}

} // namespace windows_gaps
