// To whom the gaps are supplied, and that nobody else is touched.
#include <array>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <type_traits>

#include <windows.h>

#include <gtest/gtest.h>
#include <urlmon.h>
#include <wincred.h>

#include "testbed/support/import_patch.h"
#include "testbed/windows_gaps/windows_gaps.h"

namespace windows_gaps_test {
namespace {

FARPROC WINAPI LookUpAsOnWindows(HMODULE module, LPCSTR name) {
    return std::strcmp(name, "wine_get_version") == 0 ? nullptr : GetProcAddress(module, name);
}

/// What this program calls for a function that it imports.
void* Imported(const char* library, const char* function) {
    HMODULE self = GetModuleHandleW(nullptr);
    void* current = testbed::PatchImport(self, library, function, nullptr);
    testbed::PatchImport(self, library, function, current);
    return current;
}

void* Real(const wchar_t* library, const char* function) {
    return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), function));
}

TEST(Supply, TouchesNothingOnWindowsItself) {
    HMODULE gaps = GetModuleHandleW(L"windows_gaps.dll");
    void* original = testbed::PatchImport(gaps, "kernel32.dll", "GetProcAddress",
                                          reinterpret_cast<void*>(&LookUpAsOnWindows));
    ASSERT_NE(original, nullptr);
    void* const before = Imported("urlmon.dll", "CreateURLMoniker");

    EXPECT_FALSE(SupplyWindowsGaps(GetModuleHandleW(nullptr)));

    testbed::PatchImport(gaps, "kernel32.dll", "GetProcAddress", original);
    EXPECT_EQ(Imported("urlmon.dll", "CreateURLMoniker"), before);
}

TEST(Supply, OfNoModuleIsNone) {
    EXPECT_FALSE(SupplyWindowsGaps(nullptr));
}

TEST(Supply, OfAModuleThatImportsNothingOfItSucceeds) {
    EXPECT_TRUE(SupplyWindowsGaps(GetModuleHandleW(L"kernel32.dll")));
}

TEST(Supply, ReplacesTheImportsOnceAndForAll) {
    ASSERT_TRUE(SupplyWindowsGaps(GetModuleHandleW(nullptr)));
    void* const moniker = Imported("urlmon.dll", "CreateURLMoniker");
    void* const prompt = Imported("credui.dll", "CredUIPromptForWindowsCredentialsW");

    EXPECT_TRUE(SupplyWindowsGaps(GetModuleHandleW(nullptr)));

    EXPECT_NE(moniker, Real(L"urlmon.dll", "CreateURLMoniker"));
    EXPECT_NE(prompt, Real(L"credui.dll", "CredUIPromptForWindowsCredentialsW"));
    EXPECT_EQ(Imported("urlmon.dll", "CreateURLMoniker"), moniker);
    EXPECT_EQ(Imported("credui.dll", "CredUIPromptForWindowsCredentialsW"), prompt);
}

TEST(Supply, KeepsItsLibraryLoaded) {
    // A copy, as this program's own imports keep the library itself. It stays loaded, so each run has another one.
    static int count = 0;
    const std::wstring copy = L"windows_gaps_test_copy-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
                              std::to_wstring(++count) + L".dll";
    const std::wstring path = (std::filesystem::temp_directory_path() / copy).wstring();
    std::array<wchar_t, MAX_PATH> original{};
    GetModuleFileNameW(GetModuleHandleW(L"windows_gaps.dll"), original.data(), MAX_PATH);
    ASSERT_TRUE(CopyFileW(original.data(), path.c_str(), FALSE));
    std::unique_ptr<std::remove_pointer_t<HMODULE>, decltype(&FreeLibrary)> gaps(LoadLibraryW(path.c_str()),
                                                                                 &FreeLibrary);
    ASSERT_NE(gaps, nullptr);
    auto* supply = reinterpret_cast<decltype(&SupplyWindowsGaps)>(
        reinterpret_cast<void*>(GetProcAddress(gaps.get(), "SupplyWindowsGaps")));
    ASSERT_NE(supply, nullptr);

    EXPECT_TRUE(supply(GetModuleHandleW(L"kernel32.dll")));
    gaps.reset();

    EXPECT_NE(GetModuleHandleW(copy.c_str()), nullptr);
}

} // namespace
} // namespace windows_gaps_test
