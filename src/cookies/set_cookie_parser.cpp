// Parsing of Set-Cookie response headers: the syntax. What an attribute means is in the table below.
#include "cookies/set_cookie_parser.h"

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "cookies/lower_case.h"

namespace kelda {
namespace {

constexpr std::wstring_view kBlanks = L" \t";

std::wstring_view Trimmed(std::wstring_view text) {
    const size_t first = text.find_first_not_of(kBlanks);
    return first == std::wstring_view::npos ? std::wstring_view()
                                            : text.substr(first, text.find_last_not_of(kBlanks) - first + 1);
}

/// Takes what is before the first `separator` off `text`, and the separator too; all of it where there is none.
std::wstring_view TakeUntil(std::wstring_view& text, wchar_t separator) {
    const size_t length = text.find(separator);
    const std::wstring_view taken = text.substr(0, length);
    text.remove_prefix(length == std::wstring_view::npos ? text.size() : length + 1);
    return taken;
}

/// Drops a quote from either end; one at a single end too.
std::wstring_view WithoutQuotes(std::wstring_view value) {
    if (value.ends_with(L'"')) {
        value.remove_suffix(1);
    }
    if (value.starts_with(L'"')) {
        value.remove_prefix(1);
    }
    return value;
}

/// What the attributes, in their order, make of a cookie.
class AttributeReader {
  public:
    explicit AttributeReader(CookieRecord& cookie) : cookie_(cookie) {}

    /// An attribute that is not known means nothing.
    void Read(const std::wstring& lowerName, std::wstring_view value);

  private:
    struct Attribute {
        std::wstring_view name;
        void (AttributeReader::*read)(std::wstring_view value);
    };
    static const Attribute kAttributes[];

    void ReadDomain(std::wstring_view value) { cookie_.domain = value; }
    void ReadPath(std::wstring_view value) { cookie_.path = value; }
    void ReadSameSite(std::wstring_view value);
    void ReadHttpOnly(std::wstring_view /*value*/) { cookie_.httpOnly = 1; }
    void ReadSecure(std::wstring_view /*value*/) { cookie_.secure = 1; }
    void ReadMaxAge(std::wstring_view value);
    void ReadExpires(std::wstring_view value);

    CookieRecord& cookie_;
    bool maxAgeSeen_ = false;
};

const AttributeReader::Attribute AttributeReader::kAttributes[] = {
    {L"domain", &AttributeReader::ReadDomain},     {L"path", &AttributeReader::ReadPath},
    {L"samesite", &AttributeReader::ReadSameSite}, {L"httponly", &AttributeReader::ReadHttpOnly},
    {L"secure", &AttributeReader::ReadSecure},     {L"max-age", &AttributeReader::ReadMaxAge},
    {L"expires", &AttributeReader::ReadExpires},
};

void AttributeReader::Read(const std::wstring& lowerName, std::wstring_view value) {
    const auto known = std::ranges::find(kAttributes, lowerName, &Attribute::name);
    if (known != std::end(kAttributes)) {
        (this->*known->read)(value);
    }
}

void AttributeReader::ReadSameSite(std::wstring_view value) {
    static constexpr std::pair<std::wstring_view, CookieSameSite> kPolicies[] = {
        {L"none", CookieSameSite::None}, {L"lax", CookieSameSite::Lax}, {L"strict", CookieSameSite::Strict}};
    const std::wstring lower = ToLower(value);
    for (const auto& [name, policy] : kPolicies) {
        if (lower == name) {
            cookie_.sameSite = policy;
        }
    }
}

void AttributeReader::ReadMaxAge(std::wstring_view value) {
    maxAgeSeen_ = true; // whether or not the value is a number
    ParseMaxAge(cookie_, std::wstring(value));
}

void AttributeReader::ReadExpires(std::wstring_view value) {
    if (!maxAgeSeen_) {
        ParseExpires(cookie_, std::wstring(value));
    }
}

} // namespace

// The interface takes the header by value.
// cppcheck-suppress passedByValue
// NOLINTNEXTLINE(performance-unnecessary-value-param)
bool ParseSetCookie(CookieRecord& cookie, std::wstring header) {
    std::wstring_view rest = header;
    if (rest.find(L'=') == std::wstring_view::npos) {
        return false;
    }
    // A header that throws half-way leaves nothing behind.
    CookieRecord parsed = cookie;
    // The name is all before the first "=", semicolons included.
    parsed.name = Trimmed(TakeUntil(rest, L'='));
    parsed.value = WithoutQuotes(Trimmed(TakeUntil(rest, L';')));
    AttributeReader attributes(parsed);
    while (!rest.empty()) {
        std::wstring_view value = TakeUntil(rest, L';');
        const std::wstring_view name = TakeUntil(value, L'=');
        attributes.Read(ToLower(Trimmed(name)), Trimmed(value));
    }
    parsed.session = parsed.expires == CookieRecord::kNoExpiry ? 1 : 0;
    cookie = std::move(parsed);
    return true;
}

void TrimBlanks(std::wstring& text) {
    text = std::wstring(Trimmed(text));
}

} // namespace kelda
