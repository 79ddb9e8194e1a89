// A line holds challenges separated by commas, and so are a challenge's parameters: what has no "=" after its first word
// begins a challenge.
#include "challenge_header.h"

#include <algorithm>

namespace windows_gaps {
namespace {

bool IsBlank(wchar_t character) {
    return character == L' ' || character == L'\t';
}

std::wstring_view WithoutLeadingBlanks(std::wstring_view text) {
    text.remove_prefix(static_cast<std::size_t>(std::ranges::find_if_not(text, IsBlank) - text.begin()));
    return text;
}

wchar_t Lower(wchar_t character) {
    return character >= L'A' && character <= L'Z' ? static_cast<wchar_t>(character - L'A' + L'a') : character;
}

bool SameWord(std::wstring_view one, std::wstring_view other) {
    return std::ranges::equal(one, other, {}, Lower, Lower);
}

/// Takes the text up to the next `separator` off `rest`, the separator as well.
std::wstring_view Take(std::wstring_view& rest, wchar_t separator) {
    const std::size_t end = std::min(rest.find(separator), rest.size());
    const std::wstring_view taken = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return taken;
}

/// The same up to the next comma that is not quoted.
std::wstring_view TakeElement(std::wstring_view& rest) {
    bool quoted = false;
    std::size_t end = 0;
    for (; end < rest.size() && (quoted || rest[end] != L','); ++end) {
        if (quoted && rest[end] == L'\\' && end + 1 < rest.size()) {
            ++end; // an escaped character neither ends the quotation nor starts one
        } else if (rest[end] == L'"') {
            quoted = !quoted;
        }
    }
    const std::wstring_view taken = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    return taken;
}

bool BeginsBasicChallenge(std::wstring_view element) {
    element = WithoutLeadingBlanks(element);
    const auto end = std::ranges::find_if(
        element, [](wchar_t character) { return IsBlank(character) || character == L'='; });
    const auto wordLength = static_cast<std::size_t>(end - element.begin());
    return SameWord(element.substr(0, wordLength), L"basic") &&
           !WithoutLeadingBlanks(element.substr(wordLength)).starts_with(L'=');
}

BasicChallenge FindInLine(std::wstring_view challenges) {
    bool leading = true;
    while (!challenges.empty()) {
        if (BeginsBasicChallenge(TakeElement(challenges))) {
            return leading ? BasicChallenge::Leading : BasicChallenge::Listed;
        }
        leading = false;
    }
    return BasicChallenge::None;
}

} // namespace

BasicChallenge FindBasicChallenge(std::wstring_view headers) {
    BasicChallenge found = BasicChallenge::None;
    while (!headers.empty() && found != BasicChallenge::Leading) {
        std::wstring_view line = Take(headers, L'\n');
        if (line.ends_with(L'\r')) {
            line.remove_suffix(1);
        }
        if (!SameWord(Take(line, L':'), L"www-authenticate")) {
            continue;
        }
        if (const BasicChallenge inLine = FindInLine(line); inLine != BasicChallenge::None) {
            found = inLine;
        }
    }
    return found;
}

} // namespace windows_gaps
