// The dialog's description, which is fixed byte for byte.
#include "dialog/dialog_description.h"

#include <cstdint>
#include <string_view>

#include <gtest/gtest.h>

#include "dialog_test.h"

namespace kelda {
namespace {

/// FNV-1a, 64 bits.
std::uint64_t HashOf(std::string_view text) {
    std::uint64_t hash = 0xCBF29CE484222325U;
    for (const char byte : text) {
        hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3U;
    }
    return hash;
}

using Description = DialogTest;

TEST_F(Description, KeepsItsBytes) {
    const std::string_view text = kDialogDescription;
    EXPECT_EQ(text.size(), 1460U);
    EXPECT_TRUE(text.starts_with("\n(Dialog FormBasedAuthenticationDialog\n    (Components\n"));
    EXPECT_TRUE(text.ends_with("                NakedWindow\n            )\n        )\n    )\n)\n\n"));
    EXPECT_EQ(HashOf(text), 0x0B1180C7C5D343BEU);
}

TEST_F(Description, IsWhatTheDeviceIsMadeFrom) {
    RunWhileActive([this] { Close(); });
    EXPECT_EQ(toolkit.description, kDialogDescription);
}

} // namespace
} // namespace kelda
