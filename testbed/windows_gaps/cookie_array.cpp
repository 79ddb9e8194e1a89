// The block is of the process's heap, so that it is nobody's concern which module frees it.
#include "cookie_array.h"

#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>

namespace windows_gaps {
namespace {

std::size_t RoomFor(const std::optional<std::wstring>& text) {
    return text ? text->size() + 1 : 0;
}

/// The characters of a cookie's texts, terminators included.
std::size_t RoomFor(const CookieDetails& cookie) {
    return RoomFor(cookie.name) + RoomFor(cookie.value) + RoomFor(cookie.domain) + RoomFor(cookie.path);
}

/// Copies texts one behind the other.
class TextWriter {
  public:
    explicit TextWriter(wchar_t* room) : next_(room) {}

    wchar_t* Write(const std::optional<std::wstring>& text) {
        if (!text) {
            return nullptr;
        }
        wchar_t* const start = next_;
        next_ = std::ranges::copy(*text, start).out;
        *next_++ = L'\0';
        return start;
    }

  private:
    wchar_t* next_;
};

} // namespace

void CookieArrayDeleter::operator()(INTERNET_COOKIE2* cookies) const {
    HeapFree(GetProcessHeap(), 0, cookies);
}

CookieArray MakeCookieArray(const std::vector<CookieDetails>& cookies) {
    std::size_t characters = 0;
    for (const CookieDetails& cookie : cookies) {
        characters += RoomFor(cookie);
    }
    const std::size_t structures = cookies.size() * sizeof(INTERNET_COOKIE2);
    CookieArray array(static_cast<INTERNET_COOKIE2*>(
        HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, structures + characters * sizeof(wchar_t))));
    if (array == nullptr) {
        return nullptr;
    }
    TextWriter texts(reinterpret_cast<wchar_t*>(array.get() + cookies.size()));
    for (std::size_t index = 0; index < cookies.size(); ++index) {
        const CookieDetails& cookie = cookies[index];
        array[index] = {.pwszName = texts.Write(cookie.name),
                        .pwszValue = texts.Write(cookie.value),
                        .pwszDomain = texts.Write(cookie.domain),
                        .pwszPath = texts.Write(cookie.path),
                        .dwFlags = cookie.flags,
                        .ftExpires = cookie.expires.value_or(FILETIME{}),
                        .fExpiresSet = cookie.expires.has_value()};
    }
    return array;
}

} // namespace windows_gaps
