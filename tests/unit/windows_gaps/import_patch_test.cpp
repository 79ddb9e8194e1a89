// Redirecting this program's own imports.
#include "testbed/support/import_patch.h"

#include <array>
#include <cstddef>

#include <windows.h>

#include <gtest/gtest.h>

namespace windows_gaps_test {
namespace {

using testbed::PatchImport;

using Function = decltype(&GetTickCount64);

ULONGLONG WINAPI StoppedClock() {
    return 4711;
}

/// Calls through the import table at that very moment: a compiler may keep what an import was at the start of a function.
ULONGLONG Clock() {
    static ULONGLONG (*volatile clock)() = [] { return GetTickCount64(); };
    return clock();
}

void* Address(Function function) {
    return reinterpret_cast<void*>(function);
}

DWORD ProtectionOf(const void* address) {
    MEMORY_BASIC_INFORMATION information{};
    VirtualQuery(address, &information, sizeof(information));
    return information.Protect;
}

TEST(ImportPatch, SwapsAndRestoresAnImport) {
    HMODULE self = GetModuleHandleW(nullptr);

    void* original = PatchImport(self, "kernel32.dll", "GetTickCount64", Address(&StoppedClock));
    const ULONGLONG patched = Clock();
    void* replacement = PatchImport(self, "KERNEL32.DLL", "GetTickCount64", original);

    EXPECT_EQ(patched, 4711U);
    EXPECT_EQ(replacement, Address(&StoppedClock));
    EXPECT_NE(Clock(), 4711U);
    EXPECT_EQ(original,
              reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetTickCount64")));
}

TEST(ImportPatch, KnowsNoFunctionThatIsNotImported) {
    HMODULE self = GetModuleHandleW(nullptr);

    EXPECT_EQ(PatchImport(self, "kernel32.dll", "NoSuchFunction", Address(&StoppedClock)), nullptr);
    EXPECT_EQ(PatchImport(self, "kernel32.dll", "gettickcount64", Address(&StoppedClock)), nullptr);
    EXPECT_EQ(PatchImport(self, "nosuch.dll", "GetTickCount64", Address(&StoppedClock)), nullptr);
    EXPECT_EQ(PatchImport(self, "user32.dll", "GetTickCount64", Address(&StoppedClock)), nullptr);
    EXPECT_NE(Clock(), 4711U);
}

TEST(ImportPatch, OfNoModuleFindsNothing) {
    EXPECT_EQ(PatchImport(nullptr, "kernel32.dll", "GetTickCount64", Address(&StoppedClock)), nullptr);
}

/// The memory of a module as the loader lays it out, with one import in each of the ways that there are.
struct SmallImage {
    IMAGE_DOS_HEADER dos{};
    IMAGE_NT_HEADERS nt{};
    std::array<IMAGE_IMPORT_DESCRIPTOR, 4> imports{}; // the last one is the end
    std::array<IMAGE_THUNK_DATA, 3> names{};
    std::array<IMAGE_THUNK_DATA, 3> slots{};
    std::array<char, 8> library = {"one.dll"};
    std::array<char, 8> unnamed = {"two.dll"};
    struct {
        WORD hint = 0;
        std::array<char, 6> name = {"Named"};
    } named;

    SmallImage() {
        dos.e_lfanew = offsetof(SmallImage, nt);
        nt.OptionalHeader.NumberOfRvaAndSizes = IMAGE_NUMBEROF_DIRECTORY_ENTRIES;
        nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress =
            offsetof(SmallImage, imports);
        names[0].u1.Ordinal = IMAGE_ORDINAL_FLAG | offsetof(SmallImage, named);
        names[1].u1.AddressOfData = offsetof(SmallImage, named);
        slots[0].u1.Function = slots[1].u1.Function = 1;
        Describe(0, offsetof(SmallImage, unnamed), 0);
        Describe(1, offsetof(SmallImage, library),
                 offsetof(SmallImage, names) + 2 * sizeof(names[0])); // an empty list
        Describe(2, offsetof(SmallImage, library), offsetof(SmallImage, names));
    }

    void Describe(std::size_t index, std::size_t name, std::size_t firstName) {
        imports[index].Name = static_cast<DWORD>(name);
        imports[index].OriginalFirstThunk = static_cast<DWORD>(firstName);
        imports[index].FirstThunk = offsetof(SmallImage, slots);
    }

    void* Patch(const char* dll, const char* function) {
        return PatchImport(reinterpret_cast<HMODULE>(this), dll, function, Address(&StoppedClock));
    }
};

TEST(ImportPatch, FindsAnImportBehindOthersOfItsLibrary) {
    SmallImage image;

    EXPECT_EQ(image.Patch("ONE.dll", "Named"), reinterpret_cast<void*>(1));

    EXPECT_EQ(image.slots[0].u1.Function, 1U);
    EXPECT_EQ(image.slots[1].u1.Function, reinterpret_cast<ULONGLONG>(&StoppedClock));
}

TEST(ImportPatch, LeavesAloneALibraryWhoseNamesAreGone) {
    SmallImage image;

    EXPECT_EQ(image.Patch("two.dll", "Named"), nullptr);

    EXPECT_EQ(image.slots[1].u1.Function, 1U);
}

TEST(ImportPatch, CopesWithAModuleWithoutImports) {
    SmallImage image;
    image.nt.OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT].VirtualAddress = 0;
    EXPECT_EQ(image.Patch("one.dll", "Named"), nullptr);

    image = SmallImage();
    image.nt.OptionalHeader.NumberOfRvaAndSizes = IMAGE_DIRECTORY_ENTRY_IMPORT;
    EXPECT_EQ(image.Patch("one.dll", "Named"), nullptr);
}

TEST(ImportPatch, KeepsTheProtectionOfTheTable) {
    void* memory = VirtualAlloc(nullptr, sizeof(SmallImage), MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    ASSERT_NE(memory, nullptr);
    auto* image = new (memory) SmallImage;
    DWORD before = 0;
    ASSERT_NE(VirtualProtect(image, sizeof(*image), PAGE_READONLY, &before), 0);

    EXPECT_EQ(image->Patch("one.dll", "Named"), reinterpret_cast<void*>(1));

    EXPECT_EQ(ProtectionOf(image), static_cast<DWORD>(PAGE_READONLY));
    EXPECT_EQ(image->slots[1].u1.Function, reinterpret_cast<ULONGLONG>(&StoppedClock));
    VirtualFree(image, 0, MEM_RELEASE);
}

} // namespace
} // namespace windows_gaps_test
