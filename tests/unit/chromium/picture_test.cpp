// Pictures that Chromium refuses to send, as it does while a page changes over to its next document.
#include "tests/unit/chromium/chromium_test.h"

namespace chromium_test {
namespace {

TEST(Pictures, AreAskedForAgainWhenChromiumRefuses) {
    struct Pictures : PictureSink {
        void OnPicture(const std::string& png) override { last = png; }
        void OnRendererReplaced() override {}
        std::string last;
    } pictures;
    const ProfileFolder folder;
    const auto connection = StartChromium(folder);
    ASSERT_TRUE(connection);
    const auto page = OpenBarePage(connection);
    ASSERT_TRUE(page);
    page->SetPictureSink(&pictures);
    page->Send("Page.enable");
    page->SendPictures(true);
    // The moment cannot be made at will. So Chromium's consent is taken back, and the page told of a refusal.
    page->Send("Page.stopScreencast");
    connection->FailReplies(page->Session());
    EXPECT_TRUE(PumpUntil([&] { return !pictures.last.empty(); }));
    connection->End();
}

} // namespace
} // namespace chromium_test
