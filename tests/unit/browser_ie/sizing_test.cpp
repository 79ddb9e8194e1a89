// The control's size: its rectangle in pixels, its extent in hundredths of a millimetre on a screen of 96 by 120 pixels per
// inch.
#include <string>

#include <gtest/gtest.h>

#include "ie_browser_test.h"

using test_support::Lines;

namespace kelda {
namespace {

class Sizing : public IEBrowserTest {
  protected:
    Lines Resized(const RECT& rect) {
        clientRect = rect;
        browser->Resize();
        return TakeTranscript();
    }
};

/// A client rectangle, and the extent that it makes.
struct Size {
    RECT pixels;
    const char* rect;
    const char* extent;
};

TEST_F(Sizing, FollowsTheClientRectangleOfTheParent) {
    BringUp();
    for (const Size& size :
         {Size{{0, 0, 800, 600}, "0,0 800x600", "21167x12700"}, Size{{0, 0, 1, 1}, "0,0 1x1", "26x21"},
          Size{{0, 0, 0, 0}, "0,0 0x0", "0x0"}, Size{{0, 0, 96, 120}, "0,0 96x120", "2540x2540"},
          Size{{0, 0, 20000, 20000}, "0,0 20000x20000", "529167x423333"}}) {
        EXPECT_EQ(Resized(size.pixels),
                  (Lines{"GetClientRect of the parent", std::string("oleObject.SetExtent 1 ") + size.extent,
                         std::string("inPlaceObject.SetObjectRects ") + size.rect + " " + size.rect}));
    }
}

// Across, 3 pixels are 79.375 and 10 pixels 264.58 hundredths: 186 apart as each is rounded, 185 as their distance is. Down, 1
// is 21.17 and 3 are 63.5: 43 or 42.
TEST_F(Sizing, EachCoordinateIsRoundedByItself) {
    BringUp();
    EXPECT_EQ(Resized({3, 1, 10, 3})[1], "oleObject.SetExtent 1 186x43");
}

TEST_F(Sizing, TheScreenIsMeasuredOnceInTheProcess) {
    BringUp();
    browser->Resize();
    Drop();
    BringUp();
    browser->Resize();
    EXPECT_EQ(measurements, 1);
    EXPECT_EQ(contexts, 0);
}

TEST_F(Sizing, BeforeCreationAndAfterTeardownThereIsNothingToSize) {
    MakeBrowser();
    browser->Resize();
    EXPECT_EQ(TakeTranscript(), Lines{"GetClientRect of another"});
    Create();
    browser->Destroy();
    TakeTranscript();
    EXPECT_EQ(Resized({0, 0, 1, 1}), Lines{"GetClientRect of the parent"});
}

TEST_F(Sizing, TheControlsWindowIsAskedForOnce) {
    BringUp();
    EXPECT_EQ(browser->GetWindowHandle(), control.window);
    EXPECT_EQ(TakeTranscript(), Lines{"inPlaceObject.GetWindow"});
    EXPECT_EQ(browser->GetWindowHandle(), control.window);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

TEST_F(Sizing, AControlThatHasNoWindowYetIsAskedAgain) {
    BringUp();
    control.script.answers["inPlaceObject.GetWindow"] = E_FAIL;
    EXPECT_EQ(browser->GetWindowHandle(), nullptr);
    control.script.answers.clear();
    EXPECT_EQ(browser->GetWindowHandle(), control.window);
}

TEST_F(Sizing, TheWindowOfABrowserThatIsGoneIsNotRemembered) {
    BringUp();
    browser->GetWindowHandle();
    browser->Destroy();
    EXPECT_EQ(browser->GetWindowHandle(), nullptr);
    control.window = reinterpret_cast<HWND>(0x4718);
    Create();
    EXPECT_EQ(browser->GetWindowHandle(), reinterpret_cast<HWND>(0x4718));
}

TEST_F(Sizing, WithoutABrowserThereIsNoWindow) {
    MakeBrowser();
    EXPECT_EQ(browser->GetWindowHandle(), nullptr);
    EXPECT_EQ(TakeTranscript(), Lines{});
}

} // namespace
} // namespace kelda
