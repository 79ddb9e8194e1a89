#include "tests/unit/chromium/chromium_test.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "testbed/chromium/launch.h"
#include "testbed/chromium/text.h"

namespace chromium_test {
namespace {

constexpr ULONGLONG kMilliseconds = 15'000;
/// What happens outside of the message loop is looked at that often.
constexpr DWORD kLookMilliseconds = 10;

void ServeMessages() {
    MSG message{};
    while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

/// The process table of the machine that Wine runs on.
const std::filesystem::path kProcesses = L"\\\\?\\unix\\proc";

std::string CommandLineOf(int process) {
    std::ifstream file(kProcesses / std::to_string(process) / "cmdline", std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// Starts a program of that machine; there is no way to wait for it.
void RunNative(const std::wstring& program, std::wstring line) {
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION process{};
    CreateProcessW((L"\\\\?\\unix" + program).c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr,
                   nullptr, &startup, &process);
}

} // namespace

bool PumpUntil(const std::function<bool()>& condition) {
    const ULONGLONG deadline = GetTickCount64() + kMilliseconds;
    for (;;) {
        ServeMessages();
        if (condition()) {
            return true;
        }
        if (GetTickCount64() >= deadline) {
            return false;
        }
        const HANDLE none = nullptr;
        MsgWaitForMultipleObjectsEx(0, &none, kLookMilliseconds, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
    }
}

ProfileFolder::ProfileFolder(const std::wstring& extra) {
    static int count = 0;
    const std::wstring name = L"kelda-chromium-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                              std::to_wstring(GetTickCount64()) + L"-" + std::to_wstring(++count);
    top_ = (std::filesystem::temp_directory_path() / name).wstring();
    path_ = top_ + extra;
    mark_ = ToUtf8(name);
}

ProfileFolder::~ProfileFolder() {
    // Not by Windows' functions: what a killed Chromium leaves are links to nowhere, which those do not see.
    DWORD error = ERROR_SUCCESS;
    RunNative(L"/bin/rm", L"rm -rf \"" + ToUtf16(NativeFolder(top_, error)) + L"\"");
}

std::vector<int> ProfileFolder::Processes() const {
    std::vector<int> found;
    for (const auto& entry : std::filesystem::directory_iterator(kProcesses)) {
        const std::string name = entry.path().filename().string();
        int process = 0;
        const auto parsed = std::from_chars(name.data(), name.data() + name.size(), process);
        if (parsed.ec == std::errc{} && parsed.ptr == name.data() + name.size() &&
            CommandLineOf(process).find(mark_) != std::string::npos) {
            found.push_back(process);
        }
    }
    return found;
}

int ProfileFolder::Chromium() const {
    for (const int process : Processes()) {
        const std::string line = CommandLineOf(process);
        if (line.find("--user-data-dir=") != std::string::npos && line.find("--type=") == std::string::npos &&
            line.find("Launcher") == std::string::npos) {
            return process;
        }
    }
    return 0;
}

void ProfileFolder::KillChromium() const {
    const int process = Chromium();
    ASSERT_NE(process, 0);
    RunNative(L"/usr/bin/perl", L"perl -e \"kill 'KILL', " + std::to_wstring(process) + L"\"");
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

Opening OpenBrowser(const std::wstring& folder) {
    // Shared with the callback, which may come after the deadline.
    const auto opening = std::make_shared<Opening>();
    Browser::Open(folder, {}, [opening](std::shared_ptr<Browser> browser, DWORD error) {
        *opening = {true, std::move(browser), error};
    });
    EXPECT_FALSE(opening->answered) << "answered inside the call";
    PumpUntil([&] { return opening->answered; });
    return std::exchange(*opening, {});
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

void ChromiumTest::SetUp() {
    Opening opening = OpenBrowser(folder_.Path());
    ASSERT_NE(opening.browser, nullptr) << "error " << opening.error;
    browser_ = std::move(opening.browser);
    page_ = CreatePage(*browser_, client_);
    ASSERT_NE(page_, nullptr);
}

} // namespace chromium_test
