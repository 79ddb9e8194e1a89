// A header, the user name's characters, the password's characters; nothing is terminated.
#include "credential_buffer.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <utility>

namespace windows_gaps {
namespace {

constexpr std::array<char, 8> kMagic = {'W', 'G', 'C', 'R', 'E', 'D', 'S', '\0'};
constexpr std::uint32_t kVersion = 1;

struct Header {
    std::array<char, 8> magic;
    std::uint32_t version;
    std::uint32_t userNameLength; // in characters, as the other
    std::uint32_t passwordLength;
};

/// The sum does not overflow: it is far below 2^64 whatever the header says.
std::uint64_t SizeOf(std::uint64_t userNameLength, std::uint64_t passwordLength) {
    return sizeof(Header) + (userNameLength + passwordLength) * sizeof(wchar_t);
}

/// @return nothing if one of the characters is a terminator, which no text that was packed holds.
std::optional<SecretText> ReadText(const std::byte* from, std::size_t length) {
    SecretText text(length);
    std::memcpy(text.Data(), from, length * sizeof(wchar_t));
    if (text.View().size() != length) {
        return std::nullopt;
    }
    return text;
}

} // namespace

std::size_t PackedSize(const Credentials& credentials) {
    const std::uint64_t size = SizeOf(credentials.userName.View().size(), credentials.password.View().size());
    return size <= std::numeric_limits<std::uint32_t>::max() ? static_cast<std::size_t>(size) : 0;
}

void Pack(const Credentials& credentials, void* packed) {
    const std::wstring_view userName = credentials.userName.View();
    const std::wstring_view password = credentials.password.View();
    const Header header = {kMagic, kVersion, static_cast<std::uint32_t>(userName.size()),
                           static_cast<std::uint32_t>(password.size())};
    auto* to = static_cast<std::byte*>(packed);
    std::memcpy(to, &header, sizeof(header));
    to += sizeof(header);
    std::memcpy(to, userName.data(), userName.size() * sizeof(wchar_t));
    to += userName.size() * sizeof(wchar_t);
    std::memcpy(to, password.data(), password.size() * sizeof(wchar_t));
}

std::optional<Credentials> Unpack(const void* packed, std::size_t size) {
    Header header{};
    if (size < sizeof(header)) {
        return std::nullopt;
    }
    std::memcpy(&header, packed, sizeof(header));
    if (header.magic != kMagic || header.version != kVersion ||
        SizeOf(header.userNameLength, header.passwordLength) != size) {
        return std::nullopt;
    }
    const auto* text = static_cast<const std::byte*>(packed) + sizeof(header);
    auto userName = ReadText(text, header.userNameLength);
    auto password = ReadText(text + header.userNameLength * sizeof(wchar_t), header.passwordLength);
    if (!userName || !password) {
        return std::nullopt;
    }
    return Credentials{std::move(*userName), std::move(*password)};
}

} // namespace windows_gaps
