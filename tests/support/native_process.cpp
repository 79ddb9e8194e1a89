// The process table is read as the files that it is below Wine.
#include "tests/support/native_process.h"

#include <charconv>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <system_error>

#include <windows.h>

#include <gtest/gtest.h>

namespace test_support {
namespace {

const std::filesystem::path kProcesses = L"\\\\?\\unix\\proc";

/// Empty for a process that has gone meanwhile.
std::string TextOf(int process, const char* name) {
    std::ifstream file(kProcesses / std::to_string(process) / name, std::ios::binary);
    std::ostringstream text; // unlike an iterator it does not throw where reading fails
    text << file.rdbuf();
    return text.str();
}

std::string CommandLineOf(int process) {
    return TextOf(process, "cmdline");
}

bool Contains(const std::string& text, const char* part) {
    return text.find(part) != std::string::npos;
}

/// What the machine calls a file; empty if it has no name for it.
std::wstring NativeName(const std::wstring& name) {
    using GetNativeName = char*(CDECL*)(LPCWSTR name);
    const auto getNativeName = reinterpret_cast<GetNativeName>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    char* native = getNativeName == nullptr ? nullptr : getNativeName(name.c_str());
    if (native == nullptr) {
        return {};
    }
    constexpr UINT kNativeCodePage = 65010; // Wine's, for such names
    const int length = static_cast<int>(std::strlen(native));
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(kNativeCodePage, 0, native, length, nullptr, 0)), L'\0');
    MultiByteToWideChar(kNativeCodePage, 0, native, length, wide.data(), static_cast<int>(wide.size()));
    HeapFree(GetProcessHeap(), 0, native);
    return wide;
}

} // namespace

std::vector<int> NativeProcesses(const std::string& mark) {
    std::vector<int> found;
    for (const auto& entry : std::filesystem::directory_iterator(kProcesses)) {
        const std::string name = entry.path().filename().string();
        int process = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
        if (error == std::errc{} && end == name.data() + name.size() &&
            Contains(CommandLineOf(process), mark.c_str())) {
            found.push_back(process);
        }
    }
    return found;
}

int NativeChromium(const std::string& mark) {
    for (const int process : NativeProcesses(mark)) {
        const std::string line = CommandLineOf(process);
        if (Contains(line, "--user-data-dir=") && !Contains(line, "--type=") && !Contains(line, "Launcher")) {
            return process;
        }
    }
    return 0;
}

char NativeState(int process) {
    const std::string text = TextOf(process, "stat");
    const std::size_t name = text.rfind(") ");
    return name == std::string::npos ? '?' : text[name + 2];
}

void RunNative(const std::wstring& program, const std::wstring& arguments) {
    std::wstring line = program + L" " + arguments;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION ignored{};
    EXPECT_NE(CreateProcessW((L"\\\\?\\unix" + program).c_str(), line.data(), nullptr, nullptr, FALSE, 0,
                             nullptr, nullptr, &startup, &ignored),
              FALSE);
}

void KillNative(int process) {
    RunNative(L"/usr/bin/perl", L"-e \"kill 'KILL', " + std::to_wstring(process) + L"\"");
}

void RemoveNatively(const std::wstring& folder) {
    if (const std::wstring name = NativeName(folder); !name.empty()) {
        RunNative(L"/bin/rm", L"-rf \"" + name + L"\"");
    }
}

} // namespace test_support
