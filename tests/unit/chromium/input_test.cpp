// Window messages in the words of the protocol, without a page.
#include <gtest/gtest.h>

#include <string>

#include "testbed/chromium/view_input.h"

namespace testbed::chromium {
namespace {

std::string TextOf(KeyInput& keys, wchar_t unit) {
    const auto input = keys.Translate(WM_CHAR, unit, 1);
    return input ? input->at("text").get<std::string>() : "nothing";
}

TEST(Input, PairsNoSurrogateTwice) {
    KeyInput keys;
    EXPECT_EQ(TextOf(keys, 0xD83D), "nothing");
    EXPECT_EQ(TextOf(keys, 0xDE00), "\xF0\x9F\x98\x80");
    EXPECT_EQ(TextOf(keys, 0xDE00), "\xEF\xBF\xBD");
}

TEST(Input, PairsNoSurrogateOverACharacterBetween) {
    KeyInput keys;
    EXPECT_EQ(TextOf(keys, 0xD83D), "nothing");
    EXPECT_EQ(TextOf(keys, L'a'), "a");
    EXPECT_EQ(TextOf(keys, 0xDE00), "\xEF\xBF\xBD");
}

} // namespace
} // namespace testbed::chromium
