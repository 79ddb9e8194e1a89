// Written cookies on their way to a server, and a server's on their way back.
#include <memory>
#include <string>
#include <type_traits>

#include <windows.h>

#include <gtest/gtest.h>
#include <wininet.h>

#include "cookie_calls.h"
#include "recording_caller.h"
#include "testbed/support/import_patch.h"
#include "testbed/windows_gaps/windows_gaps.h"
#include "tests/support/canned_server.h"
#include "tests/support/scoped_variable.h"

using test_support::Answer;
using test_support::CannedServer;
using test_support::HeaderOf;

namespace windows_gaps_test {
namespace {

/// Ports do not tell cookies apart, so each test has a folder of its own on the one host that the servers have.
class CookieDownload : public BindTest {
  protected:
    void TearDown() override {
        DeleteCookies(server_.Url(Path()));
        BindTest::TearDown();
    }

    static std::wstring Path(const std::wstring& file = L"") {
        const std::string name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
        return L"/" + std::wstring(name.begin(), name.end()) + L"/" + file;
    }
    static std::string PathText() {
        const std::wstring path = Path();
        return {path.begin(), path.end()};
    }

    /// Downloads through urlmon. @return the `Cookie` line that the server got.
    std::string CookieOfADownload(const std::wstring& path = Path(L"document")) {
        Bind(server_.Url(path), caller_.Get());
        return HeaderOf(server_.Requests().back(), "Cookie");
    }

    std::string headers_; ///< of the server's answers
    CannedServer server_{[this](const std::string& /*request*/) { return Answer(200, headers_, "a body"); }};
};

TEST_F(CookieDownload, CarriesWhatWasWritten) {
    Write(server_.Url(Path()), {L"session", L"s-1", L"127.0.0.1", Path(), INTERNET_COOKIE_HTTPONLY});
    Write(server_.Url(Path()), {L"balancer", L"b=2", std::nullopt, std::nullopt,
                                INTERNET_COOKIE_SAME_SITE_LAX, SecondsFromNow(3600)});

    EXPECT_EQ(CookieOfADownload(), "session=s-1; balancer=b=2");
}

TEST_F(CookieDownload, CarriesItThroughWinInetAsWell) {
    using Handle = std::unique_ptr<std::remove_pointer_t<HINTERNET>, decltype(&InternetCloseHandle)>;
    Write(server_.Url(Path()), {L"session", L"s-1", std::nullopt, std::nullopt, INTERNET_COOKIE_HTTPONLY});

    const Handle session(InternetOpenW(L"test", INTERNET_OPEN_TYPE_DIRECT, nullptr, nullptr, 0),
                         &InternetCloseHandle);
    const Handle request(InternetOpenUrlW(session.get(), server_.Url(Path(L"document")).c_str(), nullptr, 0,
                                          INTERNET_FLAG_RELOAD, 0),
                         &InternetCloseHandle);

    ASSERT_NE(request, nullptr);
    EXPECT_EQ(HeaderOf(server_.Requests().back(), "Cookie"), "session=s-1");
}

TEST_F(CookieDownload, CarriesItWhereItBelongsOnly) {
    Write(server_.Url(Path()), {L"session", L"s-1", std::nullopt, Path(L"inner")});
    EXPECT_EQ(CookieOfADownload(Path(L"document")), "");
    EXPECT_EQ(CookieOfADownload(Path(L"inner/document")), "session=s-1");
}

TEST_F(CookieDownload, CarriesItToAHostThatIsWrittenInCapitals) {
    std::wstring url = server_.Url(Path(L"document"));
    url.replace(url.find(L"127.0.0.1"), 9, L"LocalHost");
    Write(url, {L"session", L"s-1"});

    Bind(url, caller_.Get());

    EXPECT_EQ(HeaderOf(server_.Requests().back(), "Cookie"), "session=s-1");
}

TEST_F(CookieDownload, CarriesNothingThatWasDeleted) {
    Write(server_.Url(Path()), {L"session", L"s-1"});
    Write(server_.Url(Path()), {L"session", L"", std::nullopt, std::nullopt, 0, SecondsFromNow(-10)});
    EXPECT_EQ(CookieOfADownload(), "");
}

TEST_F(CookieDownload, CarriesAValueWithoutAName) {
    Write(server_.Url(Path()), {std::nullopt, L"value"});
    EXPECT_EQ(CookieOfADownload(), "value");
}

TEST_F(CookieDownload, BringsTheServersCookies) {
    const test_support::ScopedVariable flags(L"KELDA_TEST_SERVER_COOKIE_FLAGS", L"8193");
    headers_ = "Set-Cookie: hidden=h; HttpOnly; Path=" + PathText() +
               "\r\nSet-Cookie: open=o; Path=" + PathText() + "\r\n";

    CookieOfADownload();

    EXPECT_EQ(Read(server_.Url(Path()), 0), (Lines{"open=o, 127.0.0.1, /, 0x00002001"}));
    EXPECT_EQ(Read(server_.Url(Path())),
              (Lines{"hidden=h, 127.0.0.1, /, 0x00002001", "open=o, 127.0.0.1, /, 0x00002001"}));
    headers_.clear();
    EXPECT_EQ(CookieOfADownload(), "hidden=h; open=o");
}

TEST_F(CookieDownload, BringsTheServersChanges) {
    Write(server_.Url(Path()), {L"changed", L"1", std::nullopt, std::nullopt, INTERNET_COOKIE_SAME_SITE_LAX});
    Write(server_.Url(Path()), {L"kept", L"2", std::nullopt, std::nullopt, INTERNET_COOKIE_SAME_SITE_LAX});
    Write(server_.Url(Path()), {L"removed", L"3"});
    headers_ = "Set-Cookie: changed=4; Path=" + PathText() + "\r\nSet-Cookie: removed=; Path=" + PathText() +
               "; Expires=Wed, 09 Jun 2021 10:18:14 GMT\r\n";

    EXPECT_EQ(CookieOfADownload(), "changed=1; kept=2; removed=3");

    EXPECT_EQ(Read(server_.Url(Path())), (Lines{"kept=2, 127.0.0.1, " + PathText() + ", 0x00200000",
                                                "changed=4, 127.0.0.1, /, 0x00000000"}));
}

TEST(CookieSupply, ReplacesTheImports) {
    HMODULE self = GetModuleHandleW(nullptr);
    ASSERT_TRUE(SupplyWindowsGaps(self));
    for (const char* function : {"InternetGetCookieEx2", "InternetSetCookieEx2", "InternetFreeCookies"}) {
        void* const supplied = testbed::PatchImport(self, "wininet.dll", function, nullptr);
        testbed::PatchImport(self, "wininet.dll", function, supplied);
        HMODULE owner = nullptr;
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                               GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<LPCWSTR>(supplied), &owner);
        EXPECT_EQ(owner, GetModuleHandleW(L"windows_gaps.dll")) << function;
    }
}

} // namespace
} // namespace windows_gaps_test
