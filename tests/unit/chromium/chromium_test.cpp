// Profile folders, the shared browser, and waiting.
#include "tests/unit/chromium/chromium_test.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <sstream>

#include "testbed/chromium/launch.h"
#include "testbed/chromium/text.h"
#include "tests/support/native_process.h"

namespace chromium_test {
namespace {

/// A text about a process: its parts end with a zero byte each.
std::string TextOf(int process, const char* name) {
    std::ifstream file(std::filesystem::path(L"\\\\?\\unix\\proc") / std::to_string(process) / name,
                       std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// Holds the shared browser while the program's cases run.
class SharedChromium final : public testing::Environment {
  public:
    std::shared_ptr<Browser> Get() {
        if (browser_ == nullptr || !browser_->Alive()) {
            End();
            folder_.emplace();
            browser_ = OpenBrowser(folder_->Path()).browser;
        }
        return browser_;
    }
    void End() {
        browser_.reset();
        folder_.reset();
    }
    void TearDown() override { End(); }

  private:
    std::optional<ProfileFolder> folder_;
    std::shared_ptr<Browser> browser_;
};

// GoogleTest takes ownership.
auto* sharedChromium = static_cast<SharedChromium*>(testing::AddGlobalTestEnvironment(new SharedChromium));

/// Sends a command about the browser as a whole, and waits for its reply.
/// @return null on any failure.
Json Ask(const Browser& browser, const std::string& method, Json params = Json::object()) {
    const auto reply = std::make_shared<std::optional<Json>>();
    browser.Protocol()->Send(method, std::move(params), {},
                             [reply](const Json* result) { *reply = result == nullptr ? Json() : *result; });
    PumpUntil([&] { return reply->has_value(); });
    return reply->value_or(Json());
}

/// Whether the list in the reply to a command is empty.
bool HasNone(const Browser& browser, const std::string& method, const char* list) {
    const Json reply = Ask(browser, method);
    return reply.is_object() && reply.at(list).empty();
}

/// Closes pages that are left, expects no private profile, and deletes the cookies.
void CleanUp(const Browser& browser) {
    ASSERT_TRUE(browser.Alive()) << "a case that ends the browser needs one of its own";
    // Chromium may ignore that a page is to be closed while it exchanges the page's document. So it is asked again.
    EXPECT_TRUE(PumpUntil([&] {
        const auto pages = PagesOf(browser);
        for (const std::string& page : pages) {
            Ask(browser, "Target.closeTarget", {{"targetId", page}});
        }
        return pages.empty();
    }));
    EXPECT_TRUE(
        PumpUntil([&] { return HasNone(browser, "Target.getBrowserContexts", "browserContextIds"); }));
    Ask(browser, "Storage.clearCookies");
    EXPECT_TRUE(PumpUntil([&] { return HasNone(browser, "Storage.getCookies", "cookies"); }));
}

} // namespace

ProfileFolder::ProfileFolder(const std::wstring& extra) {
    static int count = 0;
    const std::wstring name = L"kelda-chromium-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                              std::to_wstring(GetTickCount64()) + L"-" + std::to_wstring(++count);
    top_ = (std::filesystem::temp_directory_path() / name).wstring();
    path_ = top_ + extra;
    mark_ = ToUtf8(name);
}

// A process that outlives a killed Chromium by a moment would make the folder again.
ProfileFolder::~ProfileFolder() {
    if (GetFileAttributesW(top_.c_str()) != INVALID_FILE_ATTRIBUTES) {
        EXPECT_TRUE(PumpUntil([this] { return Processes().empty(); }));
        test_support::RemoveNatively(top_);
    }
}

std::vector<int> ProfileFolder::Processes() const {
    return test_support::NativeProcesses(mark_);
}

int ProfileFolder::Chromium() const {
    return test_support::NativeChromium(mark_);
}

std::string ProfileFolder::ChromiumVariable(const std::string& name) const {
    std::istringstream variables(TextOf(Chromium(), "environ"));
    std::string variable;
    while (std::getline(variables, variable, '\0')) {
        if (variable.starts_with(name + "=")) {
            return variable.substr(name.size() + 1);
        }
    }
    return {};
}

void ProfileFolder::KillChromium() const {
    const int process = Chromium();
    ASSERT_NE(process, 0);
    test_support::KillNative(process);
}

void ProfileFolder::KillRenderers() const {
    for (const int process : Processes()) {
        if (TextOf(process, "cmdline").find("--type=renderer") != std::string::npos) {
            test_support::KillNative(process);
        }
    }
}

void ProfileFolder::HoldChromium(int seconds) const {
    const int process = Chromium();
    ASSERT_NE(process, 0);
    const std::wstring number = std::to_wstring(process);
    test_support::RunNative(L"/usr/bin/perl", L"-e \"kill 'STOP', " + number + L"; sleep " +
                                                  std::to_wstring(seconds) + L"; kill 'CONT', " + number +
                                                  L"\"");
    ASSERT_TRUE(PumpUntil([&] { return test_support::NativeState(process) == 'T'; }));
}

void ProfileFolder::StopChromium() const {
    const int process = Chromium();
    ASSERT_NE(process, 0);
    test_support::RunNative(L"/usr/bin/perl", L"-e \"kill 'STOP', " + std::to_wstring(process) + L"\"");
    ASSERT_TRUE(PumpUntil([&] { return test_support::NativeState(process) == 'T'; }));
}

Site::Site()
    : server_([this](const std::string& request) {
          const std::size_t start = request.find(' ') + 1;
          const auto found = answers_.find(request.substr(start, request.find(' ', start) - start));
          return found == answers_.end() ? test_support::Answer(404, "", "") : found->second;
      }) {}

void Site::Add(const std::string& path, const std::string& html, const std::string& headers) {
    Add(path, test_support::Answer(200, "Content-Type: text/html\r\n" + headers, html));
}

void Site::Add(const std::string& path, test_support::CannedAnswer answer) {
    answers_[path] = std::move(answer);
}

void Site::AddStalled(const std::string& path) {
    answers_[path] = {"", "never sent"};
}

std::string Site::Url(const std::string& path) const {
    return ToUtf8(server_.Url(ToUtf16(path)));
}

std::vector<std::string> Site::Requests(const std::string& path) const {
    std::vector<std::string> found;
    for (const std::string& request : server_.Requests()) {
        if (request.find(" " + path + " ") != std::string::npos) {
            found.push_back(request);
        }
    }
    return found;
}

HWND FindBox(const std::string& title) {
    return FindWindowW(MAKEINTRESOURCEW(32770), ToUtf16(title).c_str());
}

Opening OpenBrowser(const std::wstring& folder, const BrowserOptions& options) {
    // Shared with the callback, which may come after the deadline.
    const auto opening = std::make_shared<Opening>();
    Browser::Open(folder, options, [opening](std::shared_ptr<Browser> browser, DWORD error) {
        *opening = {true, std::move(browser), error};
    });
    EXPECT_FALSE(opening->answered) << "answered inside the call";
    PumpUntil([&] { return opening->answered; });
    return std::exchange(*opening, {});
}

std::shared_ptr<Browser> SharedBrowser() {
    return sharedChromium->Get();
}

void EndSharedBrowser() {
    sharedChromium->End();
}

std::vector<std::string> PagesOf(const Browser& browser) {
    const Json reply = Ask(browser, "Target.getTargets");
    if (!reply.is_object()) {
        return {"no reply"};
    }
    std::vector<std::string> pages;
    for (const Json& target : reply.at("targetInfos")) {
        if (target.at("type") == "page") {
            pages.push_back(target.at("targetId").get<std::string>());
        }
    }
    return pages;
}

std::unique_ptr<Page> CreatePage(Browser& browser, PageClient& client, bool inPrivate) {
    const auto created = std::make_shared<std::unique_ptr<Page>>();
    const auto answered = std::make_shared<bool>(false);
    browser.CreatePage(inPrivate, client, [created, answered](std::unique_ptr<Page> page, DWORD /*error*/) {
        *created = std::move(page);
        *answered = true;
    });
    PumpUntil([&] { return *answered; });
    return std::move(*created);
}

NavigationOutcome Visit(Page& page, RecordingClient& client, const std::string& url, const Headers& headers) {
    const std::size_t before = client.outcomes.size();
    page.Navigate(url, headers);
    PumpUntil([&] { return client.outcomes.size() > before; });
    return client.outcomes.size() > before ? client.outcomes.back() : NavigationOutcome{};
}

std::string Evaluate(Page& page, const std::string& expression) {
    const auto result = std::make_shared<std::string>();
    page.Evaluate(expression,
                  [result](const std::optional<std::string>& json) { *result = json.value_or("failed"); });
    PumpUntil([&] { return !result->empty(); });
    return *result;
}

std::shared_ptr<Connection> StartChromium(const ProfileFolder& folder) {
    DWORD error = ERROR_SUCCESS;
    auto connection = Connection::Start({NativeFolder(folder.Path(), error)}, error);
    EXPECT_EQ(error, ERROR_SUCCESS);
    return connection;
}

std::shared_ptr<PageSession> OpenBarePage(const std::shared_ptr<Connection>& connection,
                                          const std::string& mainFrame) {
    const auto session = std::make_shared<std::string>();
    connection->Send("Target.createTarget", {{"url", "about:blank"}}, {}, [=](const Json* created) {
        connection->Send("Target.attachToTarget", {{"targetId", created->at("targetId")}, {"flatten", true}},
                         {}, [=](const Json* attached) { *session = attached->at("sessionId"); });
    });
    if (!PumpUntil([&] { return !session->empty(); })) {
        return nullptr;
    }
    auto page = std::make_shared<PageSession>(connection, PageSession::Address{*session, mainFrame, ""},
                                              std::make_shared<AllowedCertificates>());
    connection->Attach(*session, page);
    return page;
}

void ChromiumTest::SetUp() {
    shared_ = SharedBrowser();
    UseBrowser(shared_);
}

void ChromiumTest::TearDown() {
    page_.reset();
    browser_.reset();
    if (const auto shared = std::exchange(shared_, nullptr)) {
        CleanUp(*shared);
    }
}

void ChromiumTest::UseBrowserOfItsOwn() {
    page_.reset();
    browser_.reset();
    shared_.reset();
    UseBrowser(OpenBrowser(folder_.Path()).browser);
}

void ChromiumTest::UseBrowser(const std::shared_ptr<Browser>& browser) {
    ASSERT_NE(browser, nullptr);
    browser_ = browser;
    page_ = CreatePage(*browser_, client_);
    ASSERT_NE(page_, nullptr);
}

} // namespace chromium_test
