// The login dialog from its opening to its end: every call in order, and what comes out of it.
#include <array>
#include <string>

#include <windows.h>

#include <wininet.h>

#include <gtest/gtest.h>

#include "dialog_test.h"

using test_support::InTurn;
using test_support::Lines;

namespace kelda {
namespace {

const Lines kOpened =
    InTurn({kSetUp, Lines{"browser 1 Create in the toolkit's window", "ui_activate_device device"}});

const Lines kOpenedEmpty = InTurn(
    {kSetUp, Lines{"[3] Failed to get Window handle to embed the browser in", "ui_activate_device device"}});

class Login : public DialogTest {
  protected:
    /// The title of the dialog that is opened with these.
    std::string Title(const std::wstring& promptText, const char* serverUrl) {
        toolkit.during["ui_activate_device"] = [this] { Close(); };
        RunFormBasedAuthentication(promptText, serverUrl);
        return TakeTranscript().at(3);
    }
};

TEST_F(Login, ThatThePageReportsEndsTheDialogWithTrue) {
    toolkit.during["ui_activate_device"] = [this] { Report(); };
    EXPECT_TRUE(RunDialog());
    EXPECT_EQ(TakeTranscript(), InTurn({kOpened, Lines{"[0] OnSessionAuthenticated"}, kClosed}));
    EXPECT_FALSE(toolkit.DeviceExists());
}

TEST_F(Login, ThatFailedEndsTheDialogWithFalse) {
    toolkit.during["ui_activate_device"] = [this] { ReportFailure(); };
    EXPECT_FALSE(RunDialog());
    EXPECT_EQ(TakeTranscript(), InTurn({kOpened, Lines{"[0] OnSessionAuthenticatedFailed"}, kClosed}));
    EXPECT_FALSE(toolkit.DeviceExists());
}

TEST_F(Login, ThatTheUserClosesEndsTheDialogWithFalse) {
    toolkit.during["ui_activate_device"] = [this] { Close(); };
    EXPECT_FALSE(RunDialog());
    EXPECT_EQ(TakeTranscript(), InTurn({kOpened, kClosed}));
    EXPECT_FALSE(toolkit.DeviceExists());
}

TEST_F(Login, ThatTheUserClosesIsFalseWhateverItsPagesHaveDone) {
    toolkit.during["ui_activate_device"] = [this] {
        LastBrowser()->owner->OnNavigationCompleted();
        LastBrowser()->owner->OnNavigationCompleted();
        Close();
    };
    EXPECT_FALSE(RunDialog());
    EXPECT_EQ(TakeTranscript(), InTurn({kOpened, kClosed}));
}

TEST_F(Login, ThatTheUserClosesIsFalseEvenIfTheSessionsCookiesAreAlreadySet) {
    toolkit.during["ui_activate_device"] = [this] {
        EXPECT_TRUE(InternetSetCookieW(L"http://server/", L"JSESSIONID", L"1"));
        Close();
    };
    EXPECT_FALSE(RunDialog());
    EXPECT_EQ(TakeTranscript(), InTurn({kOpened, kClosed}));
    std::array<wchar_t, 100> cookies{};
    DWORD size = sizeof(cookies);
    EXPECT_TRUE(InternetGetCookieW(L"http://server/", nullptr, cookies.data(), &size));
    EXPECT_STREQ(cookies.data(), L"JSESSIONID=1");
}

TEST_F(Login, WhoseModalLoopEndsByItselfTakesTheDeviceDown) {
    EXPECT_FALSE(RunDialog());
    EXPECT_EQ(TakeTranscript(), InTurn({kOpened, kClosed}));
    EXPECT_FALSE(toolkit.DeviceExists());
}

TEST_F(Login, WhoseDeviceTheToolkitDestroysByItselfIsFalse) {
    toolkit.during["ui_activate_device"] = [this] { toolkit.DestroyDevice(); };
    EXPECT_FALSE(RunDialog());
    EXPECT_EQ(TakeTranscript(),
              InTurn({kOpened, Lines{"[0] OnDestoy()", "browser 1 Destroy", "ui_exit_device device 0",
                                     "ui_destroy_device device"}}));
}

TEST_F(Login, WithoutADeviceIsFalseWithoutAWord) {
    toolkit.answers["ui_create_device_from_string"] = 1;
    EXPECT_FALSE(RunDialog());
    EXPECT_EQ(TakeTranscript(), (Lines{"Factory http://server 0", "browser 1 InitializeCom",
                                       "ui_create_device_from_string device device", "browser 1 gone"}));
}

TEST_F(Login, WithoutADeviceTakesAnyAnswerButZeroForThat) {
    toolkit.answers["ui_create_device_from_string"] = -1;
    EXPECT_FALSE(RunDialog());
    EXPECT_EQ(TakeTranscript().back(), "browser 1 gone");
}

TEST_F(Login, WithoutAWindowForTheBrowserOpensAnEmptyDialogThatCanBeClosed) {
    toolkit.answers["ui_do_operation"] = 1;
    toolkit.during["ui_activate_device"] = [this] { Close(); };
    EXPECT_FALSE(RunDialog());
    EXPECT_EQ(TakeTranscript(), InTurn({kOpenedEmpty, kClosed}));
}

TEST_F(Login, WithoutAWindowForTheBrowserTakesAnyAnswerButZeroForThat) {
    toolkit.answers["ui_do_operation"] = -1;
    RunDialog();
    EXPECT_EQ(TakeTranscript().at(kSetUp.size()), "[3] Failed to get Window handle to embed the browser in");
}

TEST_F(Login, WhoseDeviceGetsNoWindowsIsFalseWithoutAUser) {
    for (const char* function : {"ui_manage_device", "ui_do_operation", "ui_activate_device"}) {
        toolkit.answers[function] = 1;
    }
    EXPECT_FALSE(RunDialog());
    EXPECT_EQ(TakeTranscript(), InTurn({kOpenedEmpty, kClosed}));
    EXPECT_FALSE(toolkit.DeviceExists());
}

TEST_F(Login, LooksAtNoOtherAnswerOfTheToolkit) {
    for (const char* function : {"ui_modify", "ui_add_action", "ui_set_action", "ui_manage_device",
                                 "ui_activate_device", "ui_exit_device", "ui_destroy_device"}) {
        toolkit.answers[function] = 1;
    }
    toolkit.during["ui_activate_device"] = [this] { Report(); };
    EXPECT_TRUE(RunDialog());
    EXPECT_EQ(TakeTranscript(), InTurn({kOpened, Lines{"[0] OnSessionAuthenticated"}, kClosed}));
}

TEST_F(Login, AnswersEachActionOfTheToolkitWithZero) {
    RunWhileActive([this] {
        toolkit.Raise(kUiActionResize);
        Close();
    });
    EXPECT_EQ(toolkit.handlerAnswers, (std::vector<int>{0, 0, 0})); // resize, destroy within close, close
}

TEST_F(Login, FitsTheBrowserWheneverTheDialogsSizeChanges) {
    RunWhileActive([this] {
        toolkit.Raise(kUiActionResize);
        toolkit.Raise(kUiActionResize);
        EXPECT_EQ(TakeTranscript(), (Lines{"browser 1 Resize", "browser 1 Resize"}));
        Close();
    });
}

TEST_F(Login, DoesNothingWhenAPageHasLoaded) {
    RunWhileActive([this] {
        LastBrowser()->owner->OnNavigationCompleted();
        EXPECT_EQ(TakeTranscript(), Lines{});
        EXPECT_TRUE(toolkit.DeviceExists());
        Close();
    });
}

TEST_F(Login, ShowsTheServerWithoutItsTrailingSlashButGoesToTheUrlAsGiven) {
    toolkit.during["ui_activate_device"] = [this] { Close(); };
    RunFormBasedAuthentication(L"Log in", "http://server/");
    const Lines lines = TakeTranscript();
    EXPECT_EQ(lines.at(0), "Factory http://server/ 0");
    EXPECT_EQ(lines.at(3), "ui_modify device device 2=\"Log in: http://server\" 0");
}

TEST_F(Login, DropsOneSlashFromTheTitleAndShortensNothing) {
    const std::string path(300, 'p');
    EXPECT_EQ(Title(L"Log in", ("http://server/" + path + "//").c_str()),
              "ui_modify device device 2=\"Log in: http://server/" + path + "/\" 0");
    EXPECT_EQ(Title(L"", ""), "ui_modify device device 2=\": \" 0");
}

TEST_F(Login, HasATitleOfAnyCharacters) {
    EXPECT_EQ(Title(L"Anmeldung f\u00fcr \u6587\u66f8", "http://b\xc3\xbc"
                                                        "cher.example/"),
              "ui_modify device device 2=\"Anmeldung f\xc3\xbcr \xe6\x96\x87\xe6\x9b\xb8: http://b\xc3\xbc"
              "cher.example\" 0");
}

class RetainedBrowser : public DialogTest {};

TEST_F(RetainedBrowser, StaysAliveUntilTheNextDialogIsDestroyed) {
    toolkit.during["ui_activate_device"] = [this] { Report(); };
    EXPECT_TRUE(RunDialog());
    EXPECT_NE(Browser(1), nullptr);

    toolkit.during["ui_activate_device"] = [this] {
        EXPECT_NE(Browser(1), nullptr);
        Report();
    };
    EXPECT_TRUE(RunDialog());
    EXPECT_EQ(Browser(1), nullptr);
    EXPECT_NE(Browser(2), nullptr);
    EXPECT_EQ(TakeTranscript().back(), "browser 1 gone");

    toolkit.during["ui_activate_device"] = [this] { Close(); };
    EXPECT_FALSE(RunDialog());
    EXPECT_EQ(Browser(2), nullptr);
    EXPECT_NE(Browser(3), nullptr);
    EXPECT_EQ(TakeTranscript().back(), "browser 2 gone");
}

TEST_F(RetainedBrowser, IsHeldByNobodyElseOnceItsDialogIsGone) {
    RunWhileActive([this] { Report(); });
    EXPECT_EQ(browsers.front().use_count(), 1);
}

TEST_F(RetainedBrowser, GoesOnlyWhenTheNextOneHasBeenTakenDown) {
    RunWhileActive([this] { Report(); });
    RunWhileActive([this] { Report(); });
    EXPECT_EQ(TakeTranscript(),
              (Lines{"[0] OnSessionAuthenticated", "ui_exit_device device 0", "ui_destroy_device device",
                     "[0] OnDestoy()", "browser 2 Destroy", "browser 1 gone"}));
}

TEST_F(RetainedBrowser, IsNotDestroyedWithTheProgramsStaticObjects) {
    struct EndMark {
        ~EndMark() { RecordingBrowser::programEnds = true; }
    };
    RunWhileActive([this] { Report(); });
    static const EndMark mark; // destroyed before everything that the dialog has made; the exit status tells
    EXPECT_NE(Browser(1), nullptr);
}

TEST_F(RetainedBrowser, IsNotReplacedByThatOfADialogWithoutADevice) {
    RunWhileActive([this] { Report(); });
    toolkit.answers["ui_create_device_from_string"] = 1;
    RunDialog();
    EXPECT_NE(Browser(1), nullptr);
    EXPECT_EQ(Browser(2), nullptr);
}

} // namespace
} // namespace kelda
