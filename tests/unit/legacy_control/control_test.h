// What the tests of the control share: a site of pages, and a control in a window of a host that writes down.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <winsock2.h>

#include <windows.h>

#include <exdisp.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <ole2.h>
#include <olectl.h>
#include <wrl/client.h>

#include "testbed/legacy_control/legacy_control.h"
#include "tests/support/canned_server.h"
#include "tests/support/message_pump.h"
#include "tests/unit/legacy_control/recording_host.h"

namespace legacy_control_test {

using Microsoft::WRL::ComPtr;
using test_support::PumpUntil;
using test_support::PumpWaiting;

/// Pages by their path; all else is not found.
class Pages {
  public:
    Pages();

    void Add(const std::string& path, const std::string& html, const std::string& headers = {});
    void Add(const std::string& path, test_support::CannedAnswer answer);
    /// Of this path nothing is answered.
    void AddStalled(const std::string& path);

    std::string Url(const std::string& path) const;
    /// Of the path, in order.
    std::vector<std::string> Requests(const std::string& path) const;

  private:
    std::map<std::string, test_support::CannedAnswer> answers_; // complete before the first request
    test_support::CannedServer server_;
};

/// The number of live objects of the control's library, without those that keep the shared Chromium.
LONG LiveObjects();

/// COM, the control's class, a window, and a host. In the end nothing of the control may be left.
class ControlTest : public testing::Test {
  protected:
    /// @param sharesChromium true: the controls of the case use the Chromium that the cases share. It is started for the first
    ///        of them, and anew after its end. False: they start one, which has to end with them.
    explicit ControlTest(bool sharesChromium = true) : shares_(sharesChromium) {}

    void SetUp() override;
    void TearDown() override;

    /// By OleCreate, with the host's site, its sink and its object for scripts, whose members are norv (888111888), say (7)
    /// and several (8).
    void Create();
    /// Brings the control into the host's window.
    void Activate();
    void CreateAndActivate();

    void Listen();

    template <typename Interface>
    ComPtr<Interface> Control() const {
        ComPtr<Interface> found;
        control.CopyTo(__uuidof(Interface), reinterpret_cast<void**>(found.GetAddressOf()));
        return found;
    }

    HRESULT Navigate(const std::string& url) const;
    /// Waits for one more event of that number.
    bool Await(DISPID event, const std::function<void()>& start);
    /// Waits until the page has been loaded.
    bool Load(const std::string& url);

    /// Has the page call window.external.say with the value of a script's expression.
    ///
    /// @return the value as a text; "nothing" at the deadline.
    std::string Evaluate(const std::string& expression);

    /// In the order in which hosts do it.
    void Close();

    HWND ControlWindow() const;
    /// The processes of the control's Chromium.
    static std::vector<int> Processes();
    /// The folders of profiles below the one for temporary files.
    static std::vector<std::string> Folders();

    Pages pages;
    RecordingHost host;
    ComPtr<IOleObject> control;
    DWORD cookie = 0;

  private:
    bool shares_;
    std::vector<std::string> foldersBefore_; // that of the shared Chromium
};

} // namespace legacy_control_test
