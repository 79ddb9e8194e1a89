// Memory that runs out while the dialog comes up: the exception leaves, and neither window nor memory stays behind.
#include <new>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "dialog_test.h"
#include "large_blocks.h"

using test_support::InTurn;
using test_support::Lines;

namespace kelda {
namespace {

class LostMemory : public DialogTest {
  protected:
    /// Runs a dialog of which one allocation fails, if there are as many. No value: the exception has left it.
    static std::optional<bool> Run(const std::wstring& prompt, const std::string& url,
                                   size_t allocationsBefore) {
        const FailingLargeBlock failure(allocationsBefore);
        try {
            return RunFormBasedAuthentication(prompt, url.c_str());
        } catch (const std::bad_alloc&) {
            return std::nullopt;
        }
    }

    /// Lets the browser run out of memory in one of its functions.
    void FailIn(const char* function) {
        prepare = [function](RecordingBrowser& browser) {
            browser.during[function] = [] { throw std::bad_alloc(); };
        };
    }
};

TEST_F(LostMemory, OfAnyTextLeavesNoDeviceAndNoText) {
    const std::wstring prompt(kLargeBlock, L'p');
    const std::string url(kLargeBlock, 'u');
    const std::ptrdiff_t before = LargeBlocksInUse();
    toolkit.during["ui_activate_device"] = [this] { Report(); };
    constexpr size_t kMostAllocations = 50;
    size_t failures = 0;
    std::optional<bool> result = Run(prompt, url, failures);
    while (!result && failures < kMostAllocations) {
        ++failures;
        TakeTranscript();
        EXPECT_FALSE(toolkit.DeviceExists()) << "allocation " << failures;
        EXPECT_EQ(LargeBlocksInUse(), before) << "allocation " << failures;
        result = Run(prompt, url, failures);
    }
    EXPECT_EQ(result, true);
    EXPECT_GE(failures, 3U) << "the dialog's text, the server's, and the title";
}

TEST_F(LostMemory, OfTheBrowserItselfMakesNoDevice) {
    prepare = [](RecordingBrowser&) { throw std::bad_alloc(); };
    EXPECT_THROW(RunDialog(), std::bad_alloc);
    EXPECT_EQ(TakeTranscript(), (Lines{"Factory http://server 0", "browser 1 gone"}));
}

TEST_F(LostMemory, WhileComIsInitializedMakesNoDevice) {
    FailIn("InitializeCom");
    EXPECT_THROW(RunDialog(), std::bad_alloc);
    EXPECT_EQ(TakeTranscript(),
              (Lines{"Factory http://server 0", "browser 1 InitializeCom", "browser 1 gone"}));
}

TEST_F(LostMemory, WhileTheBrowserIsCreatedTakesItAndTheDeviceDown) {
    FailIn("Create");
    EXPECT_THROW(RunDialog(), std::bad_alloc);
    EXPECT_EQ(TakeTranscriptAfterSetUp(),
              InTurn({Lines{"browser 1 Create in the toolkit's window"}, kClosed}));
    EXPECT_FALSE(toolkit.DeviceExists());
}

} // namespace
} // namespace kelda
