// Opening a browser, sharing it, and its end.
#include <array>
#include <filesystem>
#include <fstream>

#include "tests/unit/chromium/chromium_test.h"

namespace chromium_test {
namespace {

using Handle = std::unique_ptr<void, decltype(&CloseHandle)>;

/// A process of its own that has a browser open on a folder.
class OtherHost {
  public:
    explicit OtherHost(const std::wstring& folder) {
        const std::wstring eventName = L"kelda-chromium-host-" + std::to_wstring(GetCurrentProcessId());
        const Handle opened(CreateEventW(nullptr, TRUE, FALSE, eventName.c_str()), &CloseHandle);
        std::array<wchar_t, MAX_PATH> self{};
        GetModuleFileNameW(nullptr, self.data(), static_cast<DWORD>(self.size()));
        const std::wstring program =
            std::filesystem::path(self.data()).replace_filename(L"chromium_host.exe").wstring();
        std::wstring line = L"chromium_host \"" + folder + L"\" " + eventName;
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION process{};
        CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                       &process);
        CloseHandle(process.hThread);
        process_.reset(process.hProcess);
        opened_ = PumpUntil([&] { return WaitForSingleObject(opened.get(), 0) == WAIT_OBJECT_0; });
    }
    ~OtherHost() { Kill(); }
    OtherHost(const OtherHost&) = delete;
    OtherHost& operator=(const OtherHost&) = delete;

    bool Opened() const { return opened_; }
    void Kill() { TerminateProcess(process_.get(), 9); }

  private:
    Handle process_{nullptr, &CloseHandle};
    bool opened_ = false;
};

int MessageOnlyWindows() {
    int count = 0;
    HWND window = nullptr;
    while ((window = FindWindowExW(HWND_MESSAGE, window, L"TestbedChromiumMessages", nullptr)) != nullptr) {
        DWORD process = 0;
        GetWindowThreadProcessId(window, &process);
        count += process == GetCurrentProcessId() ? 1 : 0;
    }
    return count;
}

TEST(Opening, MakesTheFolderAndTellsTheVersion) {
    const ProfileFolder folder(L"\\in\\depth");
    const Opening opening = OpenBrowser(folder.Path());
    ASSERT_NE(opening.browser, nullptr) << opening.error;
    EXPECT_TRUE(std::filesystem::is_directory(folder.Path()));
    EXPECT_GT(std::stoi(opening.browser->Version()), 100);
    EXPECT_TRUE(opening.browser->Alive());
}

TEST(Opening, TakesAFolderWhoseNameIsNotAscii) {
    const ProfileFolder folder(L"\\\u00e4 \u20ac");
    const Opening opening = OpenBrowser(folder.Path());
    ASSERT_NE(opening.browser, nullptr) << opening.error;
    EXPECT_TRUE(std::filesystem::exists(std::filesystem::path(folder.Path()) / L"Default"));
}

TEST(Opening, SharesTheBrowserOfAFolder) {
    const ProfileFolder folder;
    const Opening first = OpenBrowser(folder.Path());
    const Opening second = OpenBrowser(folder.Path());
    ASSERT_NE(first.browser, nullptr);
    EXPECT_EQ(first.browser, second.browser);
}

TEST(Opening, SharesTheBrowserOfAFolderHoweverItsNameEnds) {
    const ProfileFolder folder;
    const Opening first = OpenBrowser(folder.Path() + L"\\");
    const Opening second = OpenBrowser(folder.Path());
    ASSERT_NE(first.browser, nullptr) << first.error;
    EXPECT_EQ(first.browser, second.browser) << second.error;
}

TEST(Opening, SharesABrowserThatIsStillStarting) {
    const ProfileFolder folder;
    std::vector<std::shared_ptr<Browser>> browsers;
    for (int i = 0; i < 2; ++i) {
        Browser::Open(folder.Path(), {},
                      [&](auto browser, DWORD /*error*/) { browsers.push_back(std::move(browser)); });
    }
    ASSERT_TRUE(PumpUntil([&] { return browsers.size() == 2; }));
    ASSERT_NE(browsers[0], nullptr);
    EXPECT_EQ(browsers[0], browsers[1]);
}

TEST(Opening, FailsOnAFile) {
    const ProfileFolder folder;
    std::ofstream(std::filesystem::path(folder.Path())) << "a file";
    EXPECT_EQ(OpenBrowser(folder.Path()).error, static_cast<DWORD>(ERROR_DIRECTORY));
}

TEST(Opening, WorksAgainRightAfterTheLastRelease) {
    const ProfileFolder folder;
    for (int i = 0; i < 5; ++i) {
        const Opening opening = OpenBrowser(folder.Path());
        ASSERT_NE(opening.browser, nullptr) << "round " << i << ", error " << opening.error;
    }
}

TEST(Opening, WaitsForAChromiumThatIsSlowToEnd) {
    const ProfileFolder folder;
    Opening opening = OpenBrowser(folder.Path());
    ASSERT_NE(opening.browser, nullptr) << opening.error;
    ASSERT_NO_FATAL_FAILURE(folder.HoldChromium(3));
    opening.browser.reset();
    EXPECT_EQ(folder.Chromium(), 0);
    opening = OpenBrowser(folder.Path());
    EXPECT_NE(opening.browser, nullptr) << opening.error;
}

TEST(Opening, KillsAChromiumThatDoesNotEnd) {
    const ProfileFolder folder;
    Opening opening = OpenBrowser(folder.Path());
    ASSERT_NE(opening.browser, nullptr) << opening.error;
    ASSERT_NO_FATAL_FAILURE(folder.StopChromium());
    opening.browser.reset();
    EXPECT_EQ(folder.Chromium(), 0);
    opening = OpenBrowser(folder.Path());
    EXPECT_NE(opening.browser, nullptr) << opening.error;
}

TEST(Opening, LeavesNoTemporaryFolderHoweverChromiumEnds) {
    const ProfileFolder folder;
    for (const bool killed : {false, true}) {
        Opening opening = OpenBrowser(folder.Path(), {.temporaryFolder = true});
        ASSERT_NE(opening.browser, nullptr) << opening.error;
        if (killed) {
            folder.KillChromium();
            ASSERT_TRUE(PumpUntil([&] { return !opening.browser->Alive(); }));
        }
        opening.browser.reset();
        EXPECT_FALSE(std::filesystem::exists(folder.Path())) << killed;
    }
}

TEST(Opening, LeavesNoProcessAndNoWindow) {
    EndSharedBrowser(); // it has a window as well
    const ProfileFolder folder;
    Opening opening = OpenBrowser(folder.Path());
    ASSERT_NE(opening.browser, nullptr);
    EXPECT_NE(folder.Chromium(), 0);
    EXPECT_EQ(MessageOnlyWindows(), 1);
    opening.browser.reset();
    EXPECT_EQ(MessageOnlyWindows(), 0);
    EXPECT_TRUE(PumpUntil([&] { return folder.Processes().empty(); }));
}

TEST(Opening, FailsWhereAnotherProcessHasTheFolder) {
    const ProfileFolder folder;
    OtherHost other(folder.Path());
    ASSERT_TRUE(other.Opened());
    EXPECT_EQ(OpenBrowser(folder.Path()).error, static_cast<DWORD>(ERROR_SHARING_VIOLATION));
    other.Kill();
    EXPECT_TRUE(PumpUntil([&] { return folder.Processes().empty(); }));
}

TEST(Opening, ChromiumDoesNotOutliveAHostThatIsKilled) {
    const ProfileFolder folder;
    OtherHost other(folder.Path());
    ASSERT_TRUE(other.Opened());
    ASSERT_NE(folder.Chromium(), 0);
    other.Kill();
    ASSERT_TRUE(PumpUntil([&] { return folder.Processes().empty(); }));
    EXPECT_NE(OpenBrowser(folder.Path()).browser, nullptr);
}

TEST(Opening, DroppingABrowserDropsThePageThatItMakes) {
    const ProfileFolder folder;
    Opening opening = OpenBrowser(folder.Path());
    ASSERT_NE(opening.browser, nullptr);
    RecordingClient client;
    bool called = false;
    opening.browser->CreatePage(false, client, [&](auto /*page*/, DWORD /*error*/) { called = true; });
    opening.browser.reset();
    EXPECT_NE(OpenBrowser(folder.Path()).browser, nullptr);
    EXPECT_FALSE(called);
}

} // namespace
} // namespace chromium_test
