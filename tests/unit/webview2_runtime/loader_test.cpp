// The loader's exports as far as they need no Chromium: versions, arguments and apartments.
#include <filesystem>
#include <fstream>
#include <system_error>
#include <thread>

#include <objbase.h>

#include "tests/support/scoped_variable.h"
#include "tests/unit/webview2_runtime/runtime_test.h"

namespace webview2_runtime_test {
namespace {

using test_support::ScopedVariable;

constexpr wchar_t kVersionVariable[] = L"KELDA_TEST_RUNTIME_VERSION";
const HRESULT kNotFound = HRESULT_FROM_WIN32(ERROR_FILE_NOT_FOUND);

std::wstring Version(const wchar_t* folder = nullptr) {
    return TextFrom([&](LPWSTR* text) { return Runtime().getVersion(folder, text); });
}

/// A folder with a runtime of that version, for one test.
class RuntimeFolder {
  public:
    explicit RuntimeFolder(const std::string& text)
        : path_(std::filesystem::temp_directory_path() /
                (L"kelda-browser-" + std::to_wstring(GetCurrentProcessId()))) {
        std::filesystem::create_directories(path_);
        std::ofstream(path_ / L"version.txt", std::ios::binary) << text;
    }
    ~RuntimeFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    RuntimeFolder(const RuntimeFolder&) = delete;
    RuntimeFolder& operator=(const RuntimeFolder&) = delete;

    std::wstring Path() const { return path_.native(); }

  private:
    std::filesystem::path path_;
};

TEST(RuntimeVersion, IsTheFixedOneWithoutTheVariable) {
    EXPECT_EQ(Version(), L"146.0.3856.49");
}

TEST(RuntimeVersion, FollowsTheVariableAtEveryCall) {
    for (const wchar_t* version : {L"114.0.1823.82", L"115.0.1901.183 beta"}) {
        const ScopedVariable variable(kVersionVariable, version);
        EXPECT_EQ(Version(), version);
    }
    EXPECT_EQ(Version(), L"146.0.3856.49");
}

TEST(RuntimeVersion, NoneMeansNotFoundAndANullText) {
    const ScopedVariable variable(kVersionVariable, L"none");
    std::wstring before = L"before";
    LPWSTR text = before.data();
    EXPECT_EQ(Runtime().getVersion(nullptr, &text), kNotFound);
    EXPECT_EQ(text, nullptr);
}

TEST(RuntimeVersion, AGivenFolderDecidesInsteadOfTheVariable) {
    const ScopedVariable variable(kVersionVariable, L"none");
    const RuntimeFolder folder("120.0.2210.55\r\nsecond line\r\n");
    EXPECT_EQ(Version(folder.Path().c_str()), L"120.0.2210.55");
}

TEST(RuntimeVersion, AFolderWithoutAVersionFileHoldsNoRuntime) {
    LPWSTR text = nullptr;
    EXPECT_EQ(Runtime().getVersion(L"C:\\no such folder", &text), kNotFound);
    EXPECT_EQ(text, nullptr);
    EXPECT_EQ(Runtime().getVersion(L"C:\\windows", &text), kNotFound);
}

TEST(RuntimeVersion, TheStandardVariableGoesBeforeTheGivenFolder) {
    constexpr wchar_t kFolderVariable[] = L"WEBVIEW2_BROWSER_EXECUTABLE_FOLDER";
    const RuntimeFolder folder("121.0.1.2\n");
    {
        const ScopedVariable variable(kFolderVariable, folder.Path().c_str());
        EXPECT_EQ(Version(L"C:\\no such folder"), L"121.0.1.2");
    }
    const ScopedVariable cleared(kFolderVariable, L"");
    EXPECT_EQ(Version(), L"146.0.3856.49");
}

TEST(RuntimeVersion, ANullOutputIsRefused) {
    EXPECT_EQ(Runtime().getVersion(nullptr, nullptr), E_POINTER);
}

TEST(CompareBrowserVersions, ComparesNumbersAndNotTexts) {
    struct Row {
        const wchar_t* left;
        const wchar_t* right;
        int order;
    };
    for (const Row& row : {Row{L"9.0.0.0", L"10.0.0.0", -1}, Row{L"115.0.1901.183", L"115.0.1901.99", 1},
                           Row{L"115.0.1901.183 beta", L"115.0.1901.183", 0}}) {
        int order = 7;
        EXPECT_EQ(Runtime().compareVersions(row.left, row.right, &order), S_OK);
        EXPECT_EQ(order, row.order) << row.left;
    }
}

TEST(CompareBrowserVersions, RefusesWhatIsNoVersion) {
    int order = 7;
    for (const wchar_t* text : {L"", L"115", L"115.0.1", L"115.0.1.2.3", L"a.b.c.d", L"115..1.2"}) {
        EXPECT_EQ(Runtime().compareVersions(text, L"1.2.3.4", &order), E_INVALIDARG) << text;
        EXPECT_EQ(Runtime().compareVersions(L"1.2.3.4", text, &order), E_INVALIDARG) << text;
    }
    EXPECT_EQ(order, 7);
    EXPECT_EQ(Runtime().compareVersions(L"1.2.3.4", L"1.2.3.4", nullptr), E_POINTER);
    EXPECT_EQ(Runtime().compareVersions(nullptr, L"1.2.3.4", &order), E_POINTER);
}

ComPtr<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler> UncalledHandler() {
    return MakeHandler<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler>(
        [](HRESULT, ICoreWebView2Environment*) { ADD_FAILURE() << "called"; });
}

/// What creating an environment answers on a thread of its own.
HRESULT CreateOnThread(std::optional<DWORD> apartment) {
    const auto handler = UncalledHandler();
    HRESULT result = E_PENDING;
    std::thread([&] {
        if (apartment) {
            CoInitializeEx(nullptr, *apartment);
        }
        result = Runtime().create(handler.Get());
        if (apartment) {
            CoUninitialize();
        }
    }).join();
    return result;
}

TEST(EnvironmentStart, NeedsCom) {
    EXPECT_EQ(CreateOnThread(std::nullopt), CO_E_NOTINITIALIZED);
    EXPECT_EQ(liveHandlers, 0);
}

TEST(EnvironmentStart, NeedsASingleThreadedApartment) {
    EXPECT_EQ(CreateOnThread(COINIT_MULTITHREADED), RPC_E_CHANGED_MODE);
    EXPECT_EQ(liveHandlers, 0);
}

TEST_F(RuntimeTest, AnEnvironmentNeedsAHandler) {
    EXPECT_EQ(Runtime().create(nullptr), E_POINTER);
    EXPECT_EQ(Runtime().createWithOptions(nullptr, folder.c_str(), nullptr, nullptr), E_POINTER);
}

TEST_F(RuntimeTest, WithoutARuntimeTheCompletionSaysNotFound) {
    const ScopedVariable variable(kVersionVariable, L"none");
    const auto none = MakeEnvironment(folder);
    EXPECT_EQ(none.result, kNotFound);
    EXPECT_FALSE(none.environment);
    EXPECT_EQ(MakeEnvironment(folder, nullptr, L"C:\\windows").result, kNotFound);
}

TEST_F(RuntimeTest, AnInstalledBrowserIsNoRuntime) {
    EXPECT_EQ(MakeEnvironment(folder, nullptr, L"C:\\x\\Edge\\Application\\115.0.1901.183").result,
              HRESULT_FROM_WIN32(ERROR_NOT_SUPPORTED));
}

TEST_F(RuntimeTest, AProfileFolderThatIsAFileFailsTheCompletion) {
    std::ofstream(std::filesystem::path(folder)) << "a file";
    const auto made = MakeEnvironment(folder);
    EXPECT_EQ(made.result, HRESULT_FROM_WIN32(ERROR_FILE_EXISTS));
    EXPECT_FALSE(made.environment);
}

TEST_F(RuntimeTest, AProfileFolderThatCannotBeMadeFailsTheCompletion) {
    std::ofstream(std::filesystem::path(folder)) << "a file";
    const auto made = MakeEnvironment(folder + L"\\below");
    EXPECT_TRUE(FAILED(made.result));
    EXPECT_EQ(HRESULT_FACILITY(made.result), FACILITY_WIN32);
    EXPECT_FALSE(made.environment);
}

} // namespace
} // namespace webview2_runtime_test
