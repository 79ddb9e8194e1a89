// The loader's functions, found at run time in the WebView2Loader.dll that stands beside the module this code is linked
// into, and nowhere else. Where there is none, the answer is a failure, which means "no runtime"; nothing is shown, and
// nothing of the process is changed.
#include <memory>
#include <string>

#include <windows.h>

#include <objbase.h>

// In angle brackets, as beside this file there is one of that name even where the SDK's is meant.
#include <WebView2.h>

namespace {

constexpr wchar_t kLoaderName[] = L"WebView2Loader.dll";

struct ModuleDeleter {
    using pointer = HMODULE;
    void operator()(HMODULE module) const noexcept { FreeLibrary(module); }
};
using Module = std::unique_ptr<HMODULE, ModuleDeleter>;

/// Of the calling thread, while this object lives: a file that cannot be loaded brings no message box up.
class QuietErrors {
  public:
    QuietErrors() {
        SetThreadErrorMode(GetThreadErrorMode() | SEM_FAILCRITICALERRORS | SEM_NOOPENFILEERRORBOX, &former_);
    }
    ~QuietErrors() { SetThreadErrorMode(former_, nullptr); }
    QuietErrors(const QuietErrors&) = delete;
    QuietErrors& operator=(const QuietErrors&) = delete;

  private:
    DWORD former_ = 0;
};

/// The last error, of a call that failed even where it left none.
HRESULT LastFailure() {
    const HRESULT failure = HRESULT_FROM_WIN32(GetLastError());
    return FAILED(failure) ? failure : E_FAIL;
}

/// The module's full path, of any length; empty, with the last error set, where the system does not tell.
std::wstring PathOf(HMODULE module) {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

HRESULT LoadLoader(Module& loader) {
    HMODULE self = nullptr;
    // The name is part of this module, so its address tells which one that is.
    if (GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                               GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           kLoaderName, &self) == 0) {
        return LastFailure();
    }
    std::wstring path = PathOf(self);
    if (path.empty()) {
        return LastFailure();
    }
    // A long path has the form in which this module was itself loaded from it, so it can be loaded from again.
    path.replace(path.find_last_of(L'\\') + 1, std::wstring::npos, kLoaderName);
    const QuietErrors quiet;
    // What the loader needs itself is not taken from the current folder or the PATH either.
    loader.reset(LoadLibraryExW(path.c_str(), nullptr,
                                LOAD_LIBRARY_SEARCH_DLL_LOAD_DIR | LOAD_LIBRARY_SEARCH_DEFAULT_DIRS));
    return loader ? S_OK : LastFailure();
}

/// One of the loader's functions. The loader then stays loaded until the process ends: what it starts calls back later,
/// and the objects that it hands out are its code, for as long as anyone holds them.
template <typename Function>
HRESULT FindFunction(const char* name, Function*& function) noexcept {
    try {
        Module loader;
        const HRESULT loaded = LoadLoader(loader);
        if (FAILED(loaded)) {
            return loaded;
        }
        void* const address = reinterpret_cast<void*>(GetProcAddress(loader.get(), name));
        if (address == nullptr) {
            return LastFailure();
        }
        static_cast<void>(loader.release());
        function = reinterpret_cast<Function*>(address);
        return S_OK;
    } catch (...) {
        return E_OUTOFMEMORY; // for the path: nothing else throws here
    }
}

} // namespace

STDAPI CreateCoreWebView2EnvironmentWithOptions(
    PCWSTR browserExecutableFolder, PCWSTR userDataFolder,
    ICoreWebView2EnvironmentOptions* environmentOptions,
    ICoreWebView2CreateCoreWebView2EnvironmentCompletedHandler* environmentCreatedHandler) {
    decltype(CreateCoreWebView2EnvironmentWithOptions)* create = nullptr;
    const HRESULT found = FindFunction("CreateCoreWebView2EnvironmentWithOptions", create);
    return FAILED(found) ? found
                         : create(browserExecutableFolder, userDataFolder, environmentOptions,
                                  environmentCreatedHandler);
}

STDAPI GetAvailableCoreWebView2BrowserVersionString(PCWSTR browserExecutableFolder, LPWSTR* versionInfo) {
    if (versionInfo == nullptr) {
        return E_POINTER;
    }
    *versionInfo = nullptr;
    decltype(GetAvailableCoreWebView2BrowserVersionString)* getVersion = nullptr;
    const HRESULT found = FindFunction("GetAvailableCoreWebView2BrowserVersionString", getVersion);
    return FAILED(found) ? found : getVersion(browserExecutableFolder, versionInfo);
}
