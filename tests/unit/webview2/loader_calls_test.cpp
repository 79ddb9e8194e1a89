// What the loader's functions ask of the system, and what they make of its answers: the system's own are replaced.
#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>

#include <objbase.h>

#include "WebView2.h"
#include "tests/support/replaced_import.h"

namespace {

using test_support::ReplacedImport;

/// Stands for a module or an object; is never looked into.
template <typename Pointer>
Pointer Named(std::intptr_t name) {
    return reinterpret_cast<Pointer>(name);
}

struct Arguments {
    PCWSTR folder;
    PCWSTR data;
    ICoreWebView2EnvironmentOptions* options;
    ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* handler;
};
Arguments received{};

HRESULT STDAPICALLTYPE Create(PCWSTR folder, PCWSTR data, ICoreWebView2EnvironmentOptions* options,
                              ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* handler) {
    received = {folder, data, options, handler};
    return HRESULT_FROM_WIN32(ERROR_DISK_FULL);
}

HRESULT STDAPICALLTYPE GetVersion(PCWSTR folder, LPWSTR* version) {
    received.folder = folder;
    static wchar_t text[] = L"1.2.3.4";
    *version = text;
    return S_FALSE;
}

/// A system in which this module has the path `ownPath_`, and in which the loader is loaded unless `loadError_` is set.
class LoaderCalls : public ::testing::Test {
  protected:
    /// The answer to asking for the version, and what then is in the output.
    struct Answer {
        HRESULT result;
        LPWSTR version;
    };
    static Answer AskVersion() {
        wchar_t before[] = L"before";
        LPWSTR version = before;
        const HRESULT result = GetAvailableCoreWebView2BrowserVersionString(nullptr, &version);
        return {result, version};
    }

    static void ExpectNoRuntime(HRESULT expected) {
        const Answer answer = AskVersion();
        EXPECT_EQ(answer.result, expected);
        EXPECT_EQ(answer.version, nullptr);
        EXPECT_EQ(CreateCoreWebView2EnvironmentWithOptions(nullptr, nullptr, nullptr, nullptr), expected);
    }

    std::wstring ownPath_ = L"C:\\Host\\own.dll";
    DWORD pathError_ = ERROR_SUCCESS;
    DWORD loadError_ = ERROR_SUCCESS;
    bool loads_ = true;
    bool exports_ = true;

    std::wstring loadedPath_;
    HANDLE loadedFile_ = nullptr;
    DWORD loadFlags_ = 0;
    DWORD errorMode_ = 0;
    int unloaded_ = 0;
    int ownModuleAsked_ = 0;

  private:
    DWORD CopyOwnPath(wchar_t* buffer, DWORD size) const {
        if (pathError_ != ERROR_SUCCESS) {
            SetLastError(pathError_);
            return 0;
        }
        // As the system does: cut and terminated where the buffer is too small.
        const DWORD length = std::min(static_cast<DWORD>(ownPath_.size()), size - 1);
        std::copy_n(ownPath_.begin(), length, buffer);
        buffer[length] = L'\0';
        const bool cut = length < ownPath_.size();
        SetLastError(cut ? ERROR_INSUFFICIENT_BUFFER : ERROR_SUCCESS);
        return cut ? size : length;
    }

    HMODULE Load(const wchar_t* path, HANDLE file, DWORD flags) {
        loadedPath_ = path;
        loadedFile_ = file;
        loadFlags_ = flags;
        errorMode_ = GetThreadErrorMode();
        SetLastError(loadError_);
        return loads_ ? Named<HMODULE>(0x10000) : nullptr;
    }

    FARPROC Find(HMODULE module, const char* name) const {
        EXPECT_EQ(module, Named<HMODULE>(0x10000));
        SetLastError(exports_ ? ERROR_SUCCESS : ERROR_PROC_NOT_FOUND);
        if (!exports_) {
            return nullptr;
        }
        const bool create = std::string(name) == "CreateCoreWebView2EnvironmentWithOptions";
        EXPECT_TRUE(create || std::string(name) == "GetAvailableCoreWebView2BrowserVersionString");
        return reinterpret_cast<FARPROC>(create ? reinterpret_cast<void*>(&Create)
                                                : reinterpret_cast<void*>(&GetVersion));
    }

    ReplacedImport<struct Path, decltype(GetModuleFileNameW)> replacedPath_{
        "kernel32.dll", "GetModuleFileNameW", [this](HMODULE module, wchar_t* buffer, DWORD size) {
            ownModuleAsked_ += module == GetModuleHandleW(nullptr) ? 1 : 0;
            return CopyOwnPath(buffer, size);
        }};
    ReplacedImport<struct Load, decltype(LoadLibraryExW)> replacedLoad_{
        "kernel32.dll", "LoadLibraryExW",
        [this](const wchar_t* file, HANDLE handle, DWORD flags) { return Load(file, handle, flags); }};
    ReplacedImport<struct Find, decltype(GetProcAddress)> replacedFind_{
        "kernel32.dll", "GetProcAddress",
        [this](HMODULE module, const char* name) { return Find(module, name); }};
    ReplacedImport<struct Unload, decltype(FreeLibrary)> replacedUnload_{"kernel32.dll", "FreeLibrary",
                                                                         [this](HMODULE) {
                                                                             ++unloaded_;
                                                                             return TRUE;
                                                                         }};
};

TEST_F(LoaderCalls, AskForTheFullPathBesideTheirOwnModule) {
    EXPECT_EQ(AskVersion().result, S_FALSE);
    EXPECT_EQ(ownModuleAsked_, 1);
    EXPECT_EQ(loadedPath_, L"C:\\Host\\WebView2Loader.dll");
    EXPECT_EQ(loadedFile_, nullptr);
    EXPECT_EQ(loadFlags_, DWORD{LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS});
}

TEST_F(LoaderCalls, AskForTheFullPathOfAnyLength) {
    // Around each size that a growing buffer may have, and the longest that there is.
    for (const std::size_t length : {259u, 260u, 261u, 519u, 520u, 521u, 1040u, 32767u}) {
        const std::wstring folder = L"\\\\?\\C:\\\u00fc\u4e2d" + std::wstring(length - 17, L'f') + L'\\';
        ownPath_ = folder + L"own.dll";
        ASSERT_EQ(ownPath_.size(), length);
        EXPECT_EQ(AskVersion().result, S_FALSE);
        EXPECT_EQ(loadedPath_, folder + L"WebView2Loader.dll");
    }
}

TEST_F(LoaderCalls, PassAllArgumentsOn) {
    const auto* const folder = L"C:\\Browser";
    const auto* const data = L"C:\\Data";
    auto* const options = Named<ICoreWebView2EnvironmentOptions*>(0x20);
    auto* const handler = Named<ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler*>(0x30);
    EXPECT_EQ(CreateCoreWebView2EnvironmentWithOptions(folder, data, options, handler),
              HRESULT_FROM_WIN32(ERROR_DISK_FULL));
    EXPECT_EQ(received.folder, folder);
    EXPECT_EQ(received.data, data);
    EXPECT_EQ(received.options, options);
    EXPECT_EQ(received.handler, handler);

    received = {};
    LPWSTR version = nullptr;
    EXPECT_EQ(GetAvailableCoreWebView2BrowserVersionString(folder, &version), S_FALSE);
    EXPECT_EQ(received.folder, folder);
    EXPECT_STREQ(version, L"1.2.3.4");
}

TEST_F(LoaderCalls, KeepTheLoaderLoaded) {
    EXPECT_EQ(AskVersion().result, S_FALSE);
    CreateCoreWebView2EnvironmentWithOptions(nullptr, nullptr, nullptr, nullptr);
    EXPECT_EQ(unloaded_, 0);
}

TEST_F(LoaderCalls, WithoutOutputAreRefused) {
    EXPECT_EQ(GetAvailableCoreWebView2BrowserVersionString(nullptr, nullptr), E_POINTER);
    EXPECT_TRUE(loadedPath_.empty());
}

TEST_F(LoaderCalls, FailWhereTheLoaderCannotBeLoaded) {
    loads_ = false;
    loadError_ = ERROR_ACCESS_DENIED;
    ExpectNoRuntime(E_ACCESSDENIED);
    EXPECT_EQ(unloaded_, 0);
}

TEST_F(LoaderCalls, FailEvenWhereTheSystemGivesNoReason) {
    loads_ = false;
    ExpectNoRuntime(E_FAIL);
}

TEST_F(LoaderCalls, FailWhereTheLoaderLacksTheFunction) {
    exports_ = false;
    ExpectNoRuntime(HRESULT_FROM_WIN32(ERROR_PROC_NOT_FOUND));
    EXPECT_EQ(unloaded_, 2) << "what is of no use is not kept";
}

TEST_F(LoaderCalls, FailWhereTheOwnPathIsUnknown) {
    pathError_ = ERROR_GEN_FAILURE;
    ExpectNoRuntime(HRESULT_FROM_WIN32(ERROR_GEN_FAILURE));
    EXPECT_TRUE(loadedPath_.empty());
}

TEST_F(LoaderCalls, ShowNoSystemMessageWhileTheyLoad) {
    constexpr DWORD kQuiet = SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX;
    const UINT ofProcess = GetErrorMode();
    for (const DWORD before : {DWORD{0}, DWORD{SEM_NOGPFAULTERRORBOX}}) {
        ASSERT_TRUE(SetThreadErrorMode(before, nullptr));
        EXPECT_EQ(AskVersion().result, S_FALSE);
        EXPECT_EQ(errorMode_, before | kQuiet);
        EXPECT_EQ(GetThreadErrorMode(), before);
    }
    EXPECT_EQ(GetErrorMode(), ofProcess);
}

} // namespace
