// Shortening of URLs for display.
#include "support/url_display.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace kelda {
namespace {

struct UrlRow {
    std::string text;
    size_t maxLength;
    std::string shown;
};

TEST(UrlDisplay, ATrailingSlashGoesAndALongTextEndsInAnEllipsis) {
    const std::string sixty(60, 'a');
    const std::vector<UrlRow> rows{
        {"", 0, ""},
        {"", 5, ""},
        {"/", 0, ""},
        {"//", 0, "/"},
        {"http://server/", 0, "http://server"},
        {"http://server", 0, "http://server"},
        {"http://server//", 0, "http://server/"},
        {sixty, 0, sixty},
        {sixty, 60, sixty},
        {sixty, 61, sixty},
        {sixty + "/", 60, sixty},
        {sixty, 59, sixty.substr(0, 56) + "..."},
        {sixty, 50, sixty.substr(0, 47) + "..."},
        {sixty, 4, "a..."},
        {sixty, 3, "..."},
        {sixty, 2, ".."},
        {sixty, 1, "."},
    };
    for (const UrlRow& row : rows) {
        EXPECT_EQ(TrimUrlForDisplay(row.text, row.maxLength), row.shown)
            << row.text << " to " << row.maxLength;
    }
}

TEST(UrlDisplay, NoCharacterIsCutInHalf) {
    std::string umlauts;
    for (int i = 0; i < 10; ++i) {
        umlauts += "\xC3\xA4";
    }
    EXPECT_EQ(TrimUrlForDisplay(umlauts, 10), umlauts);
    EXPECT_EQ(TrimUrlForDisplay(umlauts, 5), umlauts.substr(0, 4) + "...");
}

} // namespace
} // namespace kelda
