// The packed form of a user name and a password: what the credential prompt hands out and a credential store keeps.
// Its layout is nobody's business but this file's.
#pragma once

#include <cstddef>
#include <optional>

#include <windows.h>

#include "secret_text.h"

namespace windows_gaps {

struct Credentials {
    SecretText userName;
    SecretText password;
};

/// @return the bytes that packing takes, or 0 if the texts are too long for any buffer.
std::size_t PackedSize(const Credentials& credentials);

/// Writes `PackedSize(credentials)` bytes.
void Pack(const Credentials& credentials, void* packed);

/// @param packed may be null if `size` is 0. It may come from a store that others write to, so nothing in it is believed.
/// @return nothing if it is no packed form.
std::optional<Credentials> Unpack(const void* packed, std::size_t size);

} // namespace windows_gaps
