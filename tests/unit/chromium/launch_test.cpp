// The launcher by itself, without a connection on top.
#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "testbed/chromium/launch.h"
#include "testbed/chromium/text.h"
#include "tests/support/scoped_variable.h"
#include "tests/unit/chromium/chromium_test.h"

namespace chromium_test {
namespace {

constexpr DWORD kDeadlineMilliseconds = 15'000;

/// Everything up to the end; false if that does not come in time.
bool ReadToEnd(const Socket& socket, std::string& text) {
    setsockopt(socket.Get(), SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&kDeadlineMilliseconds),
               sizeof(kDeadlineMilliseconds));
    std::array<char, 4096> buffer{};
    for (;;) {
        const int count = recv(socket.Get(), buffer.data(), static_cast<int>(buffer.size()), 0);
        if (count <= 0) {
            return count == 0;
        }
        text.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

TEST(Launcher, EndsTheStatusAlsoWhereAnotherProcessHasInheritedIt) {
    const SocketLibrary library;
    const ProfileFolder folder;
    DWORD error = ERROR_SUCCESS;
    const std::string nativeFolder = NativeFolder(folder.Path(), error);
    ASSERT_FALSE(nativeFolder.empty()) << error;
    const SocketPair channel = MakeSocketPair();
    // Their ends stay open here, as they do in a process that was started in the same moment.
    const SocketPair status = MakeSocketPair();
    ASSERT_EQ(StartChromium({nativeFolder}, channel.theirs, status.theirs),
              static_cast<DWORD>(ERROR_SUCCESS));
    const std::string close = R"({"id":1,"method":"Browser.close"})";
    ASSERT_GT(send(channel.ours.Get(), close.c_str(), static_cast<int>(close.size()) + 1, 0), 0);
    std::string said;
    EXPECT_TRUE(ReadToEnd(status.ours, said));
    EXPECT_NE(said.find(kExitedEvent), std::string::npos) << said;
}

TEST(Launcher, SaysHowChromiumHasEndedInTheLogThatAVariableNames) {
    const ProfileFolder log;
    DWORD error = ERROR_SUCCESS;
    const std::string nativeLog = NativeFolder(log.Path(), error) + "/chromium.log";
    const test_support::ScopedVariable variable(L"KELDA_TEST_BROWSER_LOG", ToUtf16(nativeLog).c_str());
    {
        const ProfileFolder folder;
        Opening opening = OpenBrowser(folder.Path());
        ASSERT_NE(opening.browser, nullptr) << opening.error;
        folder.KillChromium();
        ASSERT_TRUE(PumpUntil([&] { return !opening.browser->Alive(); }));
    }
    std::ifstream file(std::filesystem::path(log.Path()) / L"chromium.log", std::ios::binary);
    const std::string text(std::istreambuf_iterator<char>(file), {});
    EXPECT_NE(text.find("has ended with status " + std::to_string(kExitedBySignal + 9)), std::string::npos)
        << text;
}

TEST(Launcher, GivesChromiumTheHomeThatAVariableNames) {
    constexpr const char* kHome = "/a home of its own";
    const ProfileFolder folder;
    Opening opening;
    {
        const test_support::ScopedVariable home(L"KELDA_TEST_BROWSER_HOME", ToUtf16(kHome).c_str());
        opening = OpenBrowser(folder.Path());
    }
    ASSERT_NE(opening.browser, nullptr) << opening.error;
    EXPECT_EQ(folder.ChromiumVariable("HOME"), kHome);
    opening = {};
    opening = OpenBrowser(folder.Path());
    ASSERT_NE(opening.browser, nullptr) << opening.error;
    EXPECT_NE(folder.ChromiumVariable("HOME"), kHome);
}

TEST(Launcher, LeavesTheHomeAloneIfTheVariableIsEmpty) {
    const test_support::ScopedVariable home(L"KELDA_TEST_BROWSER_HOME", L"");
    const ProfileFolder folder;
    const Opening opening = OpenBrowser(folder.Path());
    ASSERT_NE(opening.browser, nullptr) << opening.error;
    EXPECT_NE(folder.ChromiumVariable("HOME"), "");
}

} // namespace
} // namespace chromium_test
