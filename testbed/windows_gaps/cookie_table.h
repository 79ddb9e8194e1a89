// What is known of the cookies that were written here. Wine's store keeps the cookies themselves, but tells no more of
// one than its name and value.
#pragma once

#include <map>
#include <string>
#include <tuple>
#include <vector>

#include <windows.h>

#include "cookie_address.h"
#include "cookie_details.h"
#include "cookie_store.h"

namespace windows_gaps {

/// Of any thread, but of one at a time.
class CookieTable {
  public:
    /// In place of what was known of the cookie with that name, domain and path.
    void Remember(const CookieDetails& cookie);

    void Forget(const CookieDetails& cookie);

    /// Describes just what the store has for the address. A cookie whose value is not the one that was written has been
    /// changed by the server, and nothing that was written holds for it any longer: it and the ones that were never
    /// written get the address's host, the path "/" and `serverFlags`.
    std::vector<CookieDetails> Describe(const std::vector<StoredCookie>& stored, const CookieAddress& address,
                                        DWORD serverFlags) const;

  private:
    /// As the store tells cookies apart.
    struct Key {
        std::wstring name;
        std::wstring domain;
        std::wstring path;
        bool operator<(const Key& other) const {
            return std::tie(name, domain, path) < std::tie(other.name, other.domain, other.path);
        }
    };

    static Key KeyOf(const CookieDetails& cookie);

    std::map<Key, CookieDetails> cookies_;
};

} // namespace windows_gaps
