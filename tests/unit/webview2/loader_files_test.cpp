// The loader's functions with real files: which WebView2Loader.dll is taken, and which is not.
#include <windows.h>

#include <objbase.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <string>

#include "WebView2.h"
#include "tests/support/scoped_variable.h"
#include "tests/unit/webview2/fake_loader.h"

namespace {

namespace fs = std::filesystem;

constexpr const wchar_t* kLoader = L"WebView2Loader.dll";
constexpr const wchar_t* kCaller = L"webview2_loader_caller.dll";
constexpr const wchar_t* kFakeLoader = L"webview2_fake_loader.dll";

/// The folder of the modules that the tests copy, below the test program's.
fs::path Modules() {
    wchar_t program[MAX_PATH] = L"";
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    return fs::path(program).parent_path() / L"webview2_test";
}

/// In a form that has no limit of length.
std::wstring Unlimited(const fs::path& path) {
    return L"\\\\?\\" + path.wstring();
}

void MakeFolders(const fs::path& folder) {
    if (GetFileAttributesW(Unlimited(folder).c_str()) == INVALID_FILE_ATTRIBUTES) {
        MakeFolders(folder.parent_path());
        ASSERT_TRUE(CreateDirectoryW(Unlimited(folder).c_str(), nullptr)) << GetLastError();
    }
}

/// Changes the current folder, and puts back what was there.
class CurrentFolder {
  public:
    explicit CurrentFolder(const fs::path& folder) : previous_(fs::current_path()) {
        EXPECT_TRUE(SetCurrentDirectoryW(folder.c_str()));
    }
    ~CurrentFolder() { SetCurrentDirectoryW(previous_.c_str()); }
    CurrentFolder(const CurrentFolder&) = delete;
    CurrentFolder& operator=(const CurrentFolder&) = delete;

  private:
    fs::path previous_;
};

/// A folder of the test's own with a module that has the loader's functions; loaders are put beside it.
class LoaderFiles : public ::testing::Test {
  protected:
    void SetUp() override {
        static std::map<std::string, int> runs;
        const std::string name = ::testing::UnitTest::GetInstance()->current_test_info()->name();
        // What a test loads stays loaded until the process ends, so each run in a process has another folder.
        folder_ = Modules() / name / std::to_string(++runs[name]);
    }

    void LoadCaller() {
        // Only the next process can remove what this one has loaded.
        DeleteFileW(Unlimited(folder_ / kLoader).c_str());
        ASSERT_EQ(GetFileAttributesW(Unlimited(folder_ / kLoader).c_str()), INVALID_FILE_ATTRIBUTES);
        ASSERT_NO_FATAL_FAILURE(Copy(kCaller, folder_ / L"caller.dll"));
        caller_ = LoadLibraryW(Unlimited(folder_ / L"caller.dll").c_str());
        ASSERT_NE(caller_, nullptr) << GetLastError();
    }

    static void Copy(const wchar_t* module, const fs::path& file) {
        ASSERT_NO_FATAL_FAILURE(MakeFolders(file.parent_path()));
        ASSERT_TRUE(CopyFileW((Modules() / module).c_str(), Unlimited(file).c_str(), FALSE))
            << GetLastError();
    }

    template <typename Function>
    Function* Find(const char* name) {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(caller_, name)));
    }

    HRESULT Create() {
        return Find<decltype(CreateCoreWebView2EnvironmentWithOptions)>(
            "CreateCoreWebView2EnvironmentWithOptions")(nullptr, nullptr, nullptr, nullptr);
    }
    HRESULT GetVersion(LPWSTR* version) {
        return Find<decltype(GetAvailableCoreWebView2BrowserVersionString)>(
            "GetAvailableCoreWebView2BrowserVersionString")(nullptr, version);
    }

    void ExpectNoRuntime(DWORD error) {
        wchar_t before[] = L"before";
        LPWSTR version = before;
        EXPECT_EQ(GetVersion(&version), HRESULT_FROM_WIN32(error));
        EXPECT_EQ(version, nullptr);
        EXPECT_EQ(Create(), HRESULT_FROM_WIN32(error));
        EXPECT_FALSE(IsLoaded(folder_ / kLoader));
    }

    void ExpectLoaderBesideCaller() {
        LPWSTR version = nullptr;
        EXPECT_EQ(GetVersion(&version), S_OK);
        ASSERT_NE(version, nullptr);
        EXPECT_TRUE(fs::path(version) == folder_ / kLoader || version == Unlimited(folder_ / kLoader))
            << fs::path(version);
        CoTaskMemFree(version);
        EXPECT_EQ(Create(), webview2_test::kFakeCreateAnswer);
    }

    static bool IsLoaded(const fs::path& file) {
        return GetModuleHandleW(file.c_str()) != nullptr ||
               GetModuleHandleW(Unlimited(file).c_str()) != nullptr;
    }

    fs::path folder_;

  private:
    HMODULE caller_ = nullptr;
};

TEST_F(LoaderFiles, TakeTheLoaderBesideTheirModule) {
    ASSERT_NO_FATAL_FAILURE(LoadCaller());
    ASSERT_NO_FATAL_FAILURE(Copy(kFakeLoader, folder_ / kLoader));
    ExpectLoaderBesideCaller();
    EXPECT_TRUE(IsLoaded(folder_ / kLoader));
}

TEST_F(LoaderFiles, FindALoaderThatComesLater) {
    ASSERT_NO_FATAL_FAILURE(LoadCaller());
    ExpectNoRuntime(ERROR_MOD_NOT_FOUND);
    ASSERT_NO_FATAL_FAILURE(Copy(kFakeLoader, folder_ / kLoader));
    ExpectLoaderBesideCaller();
}

TEST_F(LoaderFiles, TakeItFromAFolderOfOtherLetters) {
    folder_ /= L"Gr\u00fc\u00df \u4e2d\u6587";
    ASSERT_NO_FATAL_FAILURE(LoadCaller());
    ASSERT_NO_FATAL_FAILURE(Copy(kFakeLoader, folder_ / kLoader));
    ExpectLoaderBesideCaller();
}

TEST_F(LoaderFiles, TakeItFromBelowALongPath) {
    while (folder_.wstring().size() < std::size_t{2} * MAX_PATH) {
        folder_ /= std::wstring(100, L'f');
    }
    ASSERT_NO_FATAL_FAILURE(LoadCaller());
    ASSERT_NO_FATAL_FAILURE(Copy(kFakeLoader, folder_ / kLoader));
    ExpectLoaderBesideCaller();
}

TEST_F(LoaderFiles, WithoutOneAnswerThatThereIsNoRuntime) {
    ASSERT_NO_FATAL_FAILURE(LoadCaller());
    ExpectNoRuntime(ERROR_MOD_NOT_FOUND);
}

TEST_F(LoaderFiles, WithAFileThatIsNoModuleAnswerThatThereIsNoRuntime) {
    ASSERT_NO_FATAL_FAILURE(LoadCaller());
    std::ofstream(folder_ / kLoader) << "This is no module.";
    ExpectNoRuntime(ERROR_BAD_EXE_FORMAT);
}

TEST_F(LoaderFiles, WithAModuleWithoutTheFunctionsAnswerThatThereIsNoRuntime) {
    ASSERT_NO_FATAL_FAILURE(LoadCaller());
    ASSERT_NO_FATAL_FAILURE(Copy(L"webview2_exportless_loader.dll", folder_ / kLoader));
    ExpectNoRuntime(ERROR_PROC_NOT_FOUND);
}

TEST_F(LoaderFiles, TakeNoneFromTheCurrentFolderOrThePath) {
    ASSERT_NO_FATAL_FAILURE(LoadCaller());
    const fs::path current = folder_ / L"current" / kLoader;
    const fs::path onPath = folder_ / L"path" / kLoader;
    ASSERT_NO_FATAL_FAILURE(Copy(kFakeLoader, current));
    ASSERT_NO_FATAL_FAILURE(Copy(kFakeLoader, onPath));
    const CurrentFolder inCurrent(current.parent_path());
    const test_support::ScopedVariable path(L"PATH", onPath.parent_path().c_str());

    ExpectNoRuntime(ERROR_MOD_NOT_FOUND);
    EXPECT_FALSE(IsLoaded(current));
    EXPECT_FALSE(IsLoaded(onPath));

    // Both are there to be taken.
    for (const fs::path& decoy : {current, onPath}) {
        const HMODULE loaded = LoadLibraryW(decoy.c_str());
        EXPECT_NE(loaded, nullptr);
        EXPECT_TRUE(IsLoaded(decoy));
        FreeLibrary(loaded);
    }
}

} // namespace
