// Counting by the system's own lists.
#include "tests/support/process_counts.h"

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string_view>
#include <vector>

#include <windows.h>

#include <winternl.h>

namespace test_support {
namespace {

// The platform headers know neither this class of information nor its layout; both are stable.
constexpr ULONG kSystemExtendedHandleInformation = 64;

struct HandleEntry {
    void* object;
    ULONG_PTR processId;
    ULONG_PTR handle;
    ULONG access;
    USHORT creatorIndex;
    USHORT typeIndex;
    ULONG attributes;
    ULONG reserved;
};

struct HandleTable {
    ULONG_PTR count;
    ULONG_PTR reserved;
    HandleEntry entries[1];
};

// GDI keeps its objects in a table of the process; the entry of a free place has no type.
struct GdiEntry {
    ULONG64 object;
    ULONG owner;
    USHORT unique;
    UCHAR type;
    UCHAR flags;
    ULONG64 user;
};
static_assert(sizeof(GdiEntry) == 24);
constexpr std::size_t kGdiEntries = 0x10000;
constexpr std::size_t kGdiTableInProcessBlock = 0xF8;

template <typename Function>
Function SystemFunction(const char* name) {
    return reinterpret_cast<Function>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), name)));
}

std::vector<std::byte> ReadHandleTable() {
    using QuerySystemInformation = NTSTATUS(NTAPI*)(ULONG, void*, ULONG, ULONG*);
    const auto query = SystemFunction<QuerySystemInformation>("NtQuerySystemInformation");
    std::vector<std::byte> buffer(1 << 16);
    ULONG needed = 0;
    while (query(kSystemExtendedHandleInformation, buffer.data(), static_cast<ULONG>(buffer.size()),
                 &needed) != 0) {
        if (buffer.size() > (1U << 26)) {
            throw std::runtime_error("the system does not list its handles");
        }
        buffer.resize(buffer.size() * 2);
    }
    return buffer;
}

/// Whether it is where urlmon is told of downloads.
bool IsForgotten(HWND window) {
    constexpr std::wstring_view kForgotten = L"URL Moniker Notification Window";
    std::array<wchar_t, kForgotten.size() + 2> name{};
    const int length = GetClassNameW(window, name.data(), static_cast<int>(name.size()));
    return std::wstring_view(name.data(), static_cast<std::size_t>(length)) == kForgotten;
}

BOOL CALLBACK CountOwn(HWND window, LPARAM count) {
    DWORD processId = 0;
    GetWindowThreadProcessId(window, &processId);
    if (processId == GetCurrentProcessId() && !IsForgotten(window)) {
        ++*reinterpret_cast<std::size_t*>(count);
        EnumChildWindows(
            window,
            [](HWND, LPARAM children) -> BOOL {
                ++*reinterpret_cast<std::size_t*>(children);
                return TRUE;
            },
            count);
    }
    return TRUE;
}

/// Whether it is a file of the machine below that Wine has opened to start it.
bool IsForgotten(ULONG_PTR handle) {
    std::array<wchar_t, MAX_PATH> name{};
    return GetFinalPathNameByHandleW(reinterpret_cast<HANDLE>(handle), name.data(), MAX_PATH, 0) < MAX_PATH &&
           std::wstring_view(name.data()).ends_with(L"\\usr\\bin\\perl");
}

} // namespace

std::size_t CountHandles() {
    const std::vector<std::byte> buffer = ReadHandleTable();
    const auto* const table = reinterpret_cast<const HandleTable*>(buffer.data());
    std::size_t count = 0;
    for (ULONG_PTR i = 0; i < table->count; ++i) {
        const HandleEntry& entry = table->entries[i];
        count += entry.processId == GetCurrentProcessId() && !IsForgotten(entry.handle) ? 1 : 0;
    }
    return count;
}

std::size_t CountWindows() {
    std::size_t count = 0;
    EnumWindows(&CountOwn, reinterpret_cast<LPARAM>(&count));
    for (HWND window = nullptr;
         (window = FindWindowExW(HWND_MESSAGE, window, nullptr, nullptr)) != nullptr;) {
        CountOwn(window, reinterpret_cast<LPARAM>(&count));
    }
    return count;
}

std::size_t CountGdiObjects() {
    PROCESS_BASIC_INFORMATION process{};
    const auto query = SystemFunction<decltype(&NtQueryInformationProcess)>("NtQueryInformationProcess");
    query(GetCurrentProcess(), ProcessBasicInformation, &process, sizeof(process), nullptr);
    const auto* const block = reinterpret_cast<const std::byte*>(process.PebBaseAddress);
    const auto* const entries = *reinterpret_cast<const GdiEntry* const*>(block + kGdiTableInProcessBlock);
    return static_cast<std::size_t>(
        std::count_if(entries, entries + kGdiEntries, [](const GdiEntry& entry) { return entry.type != 0; }));
}

} // namespace test_support
