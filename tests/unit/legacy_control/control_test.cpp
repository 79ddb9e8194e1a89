// Making, using and ending a control as a host does.
#include "tests/unit/legacy_control/control_test.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <utility>

#include <exdispid.h>

#include "testbed/chromium/text.h"
#include "tests/support/native_process.h"

namespace legacy_control_test {
namespace {

using testbed::chromium::ToUtf16;
using testbed::chromium::ToUtf8;

std::string FolderPrefix() {
    return "kelda-legacy-control-" + std::to_string(GetCurrentProcessId()) + "-";
}

/// What the command line of this process' Chromium has in it. A process in another Wine prefix may have the same number.
std::string FolderMark() {
    const std::wstring folder = std::filesystem::temp_directory_path().parent_path().filename().wstring();
    return ToUtf8(folder) + "/" + FolderPrefix();
}

std::vector<std::string> ProfileFolders() {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::temp_directory_path())) {
        if (const std::string name = ToUtf8(entry.path().filename().wstring());
            name.starts_with(FolderPrefix())) {
            found.push_back(name);
        }
    }
    std::ranges::sort(found);
    return found;
}

ComPtr<IStorage> MakeStorage() {
    ComPtr<ILockBytes> bytes;
    ComPtr<IStorage> storage;
    EXPECT_EQ(CreateILockBytesOnHGlobal(nullptr, TRUE, bytes.GetAddressOf()), S_OK);
    EXPECT_EQ(StgCreateDocfileOnILockBytes(bytes.Get(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE,
                                           0, storage.GetAddressOf()),
              S_OK);
    return storage;
}

/// Keeps the Chromium of this thread by a control that no case sees.
class SharedChromium final : public testing::Environment {
  public:
    /// Needs COM and the control's class.
    void Open() {
        if (control_ && test_support::NativeState(process_) != '?') {
            return;
        }
        End();
        const LONG before = LegacyControlLiveObjects();
        ASSERT_EQ(CoCreateInstance(CLSID_WebBrowser, nullptr, CLSCTX_INPROC_SERVER, IID_IWebBrowser2,
                                   reinterpret_cast<void**>(control_.GetAddressOf())),
                  S_OK);
        BSTR url = SysAllocString(L"about:blank");
        EXPECT_EQ(control_->Navigate(url, nullptr, nullptr, nullptr, nullptr), S_OK);
        SysFreeString(url);
        EXPECT_TRUE(PumpUntil([this] {
            READYSTATE state = READYSTATE_UNINITIALIZED;
            return control_->get_ReadyState(&state) == S_OK && state == READYSTATE_COMPLETE;
        }));
        process_ = test_support::NativeChromium(FolderMark());
        objects_ = LegacyControlLiveObjects() - before;
    }
    /// Nothing of Chromium may be left.
    void End() {
        if (control_) {
            control_.Reset();
            objects_ = 0;
            ExpectNothingLeft();
        }
    }
    void TearDown() override { End(); }

    LONG Objects() const { return objects_; }

    static void ExpectNothingLeft() {
        EXPECT_TRUE(PumpUntil([] { return LegacyControlLiveObjects() == 0; })) << LegacyControlLiveObjects();
        EXPECT_TRUE(PumpUntil([] { return test_support::NativeProcesses(FolderMark()).empty(); }));
        EXPECT_TRUE(PumpUntil([] { return ProfileFolders().empty(); }));
    }

  private:
    ComPtr<IWebBrowser2> control_;
    LONG objects_ = 0; // of the control
    int process_ = 0;
};

// GoogleTest takes ownership.
auto* sharedChromium = static_cast<SharedChromium*>(testing::AddGlobalTestEnvironment(new SharedChromium));

} // namespace

LONG LiveObjects() {
    return LegacyControlLiveObjects() - sharedChromium->Objects();
}

Pages::Pages()
    : server_([this](const std::string& request) {
          const std::size_t start = request.find(' ') + 1;
          const auto found = answers_.find(request.substr(start, request.find(' ', start) - start));
          return found == answers_.end() ? test_support::Answer(404, "Content-Type: text/html\r\n", "missing")
                                         : found->second;
      }) {}

void Pages::Add(const std::string& path, const std::string& html, const std::string& headers) {
    Add(path, test_support::Answer(200, "Content-Type: text/html\r\n" + headers, html));
}

void Pages::Add(const std::string& path, test_support::CannedAnswer answer) {
    answers_[path] = std::move(answer);
}

void Pages::AddStalled(const std::string& path) {
    Add(path, test_support::CannedAnswer{"", "never sent"});
}

std::string Pages::Url(const std::string& path) const {
    return ToUtf8(server_.Url(ToUtf16(path)));
}

std::vector<std::string> Pages::Requests(const std::string& path) const {
    std::vector<std::string> found;
    for (const std::string& request : server_.Requests()) {
        if (request.find(" " + path + " ") != std::string::npos) {
            found.push_back(request);
        }
    }
    return found;
}

void ControlTest::SetUp() {
    ASSERT_EQ(OleInitialize(nullptr), S_OK);
    ASSERT_TRUE(SupplyLegacyControl());
    if (shares_) {
        sharedChromium->Open();
    } else {
        sharedChromium->End();
    }
    foldersBefore_ = Folders();
    host.window = CreateWindowExW(0, L"STATIC", L"host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 500, 400,
                                  nullptr, nullptr, nullptr, nullptr);
    host.external.members = {{L"norv", 888111888}, {L"say", 7}, {L"several", 8}};
}

void ControlTest::TearDown() {
    Close();
    WithdrawLegacyControl();
    // What was still on its way when it was closed comes to nothing in the message loop.
    EXPECT_TRUE(PumpUntil([] { return LiveObjects() == 0; })) << LiveObjects();
    EXPECT_TRUE(PumpUntil([&] { return shares_ || Processes().empty(); })) << Processes().size();
    EXPECT_TRUE(PumpUntil([&] { return Folders() == foldersBefore_; }));
    EXPECT_EQ(host.References(), 0);
    if (IsWindow(host.window) != FALSE) {
        EXPECT_EQ(GetWindow(host.window, GW_CHILD), nullptr);
        DestroyWindow(host.window);
    }
    OleUninitialize();
}

void ControlTest::Create() {
    const ComPtr<IStorage> storage = MakeStorage();
    ASSERT_EQ(OleCreate(CLSID_WebBrowser, IID_IOleObject, OLERENDER_DRAW, nullptr, &host, storage.Get(),
                        reinterpret_cast<void**>(control.GetAddressOf())),
              S_OK);
    Listen();
}

void ControlTest::Listen() {
    const auto points = Control<IConnectionPointContainer>();
    ASSERT_NE(points.Get(), nullptr);
    ComPtr<IConnectionPoint> point;
    ASSERT_EQ(points->FindConnectionPoint(DIID_DWebBrowserEvents2, point.GetAddressOf()), S_OK);
    ASSERT_EQ(point->Advise(&host.sink, &cookie), S_OK);
}

void ControlTest::Activate() {
    ASSERT_EQ(control->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, &host, 0, host.window, &host.position),
              S_OK);
}

void ControlTest::CreateAndActivate() {
    ASSERT_NO_FATAL_FAILURE(Create());
    Activate();
}

HRESULT ControlTest::Navigate(const std::string& url) const {
    BSTR text = SysAllocString(ToUtf16(url).c_str());
    VARIANT flags{};
    V_VT(&flags) = VT_UINT;
    V_UINT(&flags) = navNoHistory;
    const HRESULT result = Control<IWebBrowser2>()->Navigate(text, &flags, nullptr, nullptr, nullptr);
    SysFreeString(text);
    return result;
}

bool ControlTest::Await(DISPID event, const std::function<void()>& start) {
    const std::size_t before = host.Count(event);
    start();
    return PumpUntil([&] { return host.Count(event) > before; });
}

bool ControlTest::Load(const std::string& url) {
    return Await(DISPID_DOCUMENTCOMPLETE, [&] { EXPECT_EQ(Navigate(url), S_OK); });
}

std::string ControlTest::Evaluate(const std::string& expression) {
    const std::size_t before = host.scriptCalls.size();
    EXPECT_EQ(Navigate("javascript:window.external.say(String(" + expression + "))"), S_OK);
    return PumpUntil([&] { return host.scriptCalls.size() > before; }) ? host.scriptCalls.back().values.at(0)
                                                                       : "nothing";
}

void ControlTest::Close() {
    if (!control) {
        return;
    }
    const auto points = Control<IConnectionPointContainer>();
    ComPtr<IConnectionPoint> point;
    points->FindConnectionPoint(DIID_DWebBrowserEvents2, point.GetAddressOf());
    if (cookie != 0) {
        EXPECT_EQ(point->Unadvise(std::exchange(cookie, 0)), S_OK);
    }
    EXPECT_EQ(Control<IOleInPlaceObject>()->InPlaceDeactivate(), S_OK);
    EXPECT_EQ(control->Close(OLECLOSE_NOSAVE), S_OK);
    EXPECT_EQ(control->SetClientSite(nullptr), S_OK);
    control.Reset();
}

HWND ControlTest::ControlWindow() const {
    HWND window = nullptr;
    Control<IOleInPlaceObject>()->GetWindow(&window);
    return window;
}

std::vector<std::string> ControlTest::Folders() {
    return ProfileFolders();
}

std::vector<int> ControlTest::Processes() {
    return test_support::NativeProcesses(FolderMark());
}

} // namespace legacy_control_test
