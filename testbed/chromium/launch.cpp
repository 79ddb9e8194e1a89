// Wine hands a socket over as it is, that is: not blocking, and as descriptor 0. Chromium wants it blocking, as descriptors
// 3 and 4. So a few lines of Perl stand in between. They also stay, and tell at descriptor 1 how Chromium has ended: the end
// of the socket is no sign of that, since Chromium shuts it down some time before its end, and after a crash Chromium's
// other processes may still hold it. They shut both sockets down rather than close them, because a process that was started
// in the same moment may have inherited them. And they kill a Chromium that goes on running after its host has left.
#include "testbed/chromium/launch.h"

#include <array>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace testbed::chromium {
namespace {

constexpr const wchar_t* kInterpreter = L"\\\\?\\unix\\usr\\bin\\perl";

/// Wine's code page for what the machine below calls its files.
constexpr UINT kNativeCodePage = 65010;

// No double quotes and no backslashes: it goes through a command line.
constexpr std::wstring_view kLauncher =
    L"use POSIX; use Fcntl;"
    L"fcntl($_, F_SETFL, fcntl($_, F_GETFL, 0) & ~O_NONBLOCK) for *STDIN, *STDOUT;"
    L"open(STDERR, '>>', length($ENV{KELDA_TEST_BROWSER_LOG} // '') ? $ENV{KELDA_TEST_BROWSER_LOG} : "
    L"'/dev/null');"
    L"my $temporary = shift;"
    L"my $pid = fork;"
    L"exit(126) if !defined $pid;"
    L"if ($pid == 0) {"
    L" $ENV{HOME} = $ENV{KELDA_TEST_BROWSER_HOME} if length($ENV{KELDA_TEST_BROWSER_HOME} // '');"
    L" $ENV{TMPDIR} = $ENV{KELDA_TEST_BROWSER_TEMP} if length($ENV{KELDA_TEST_BROWSER_TEMP} // '');"
    L" POSIX::dup2(0, 3); POSIX::dup2(0, 4); open(STDIN, '<', '/dev/null'); open(STDOUT, '>', '/dev/null');"
    L" exec('/usr/bin/chromium', @ARGV, $> == 0 ? '--no-sandbox' : ()); POSIX::_exit(127);"
    L"}"
    // A signal to the host's process group ends Chromium; launcher and guard stay to clean up after it.
    L"$SIG{TERM} = $SIG{INT} = 'IGNORE';"
    L"my $guard = fork;"
    L"if (defined $guard && $guard == 0) {"
    L" close(STDIN); POSIX::read(1, my $byte, 1); sleep(2); kill('KILL', $pid); POSIX::_exit(0);"
    L"}"
    L"waitpid($pid, 0);"
    L"my $status = $? & 127 ? 256 + ($? & 127) : $? >> 8;"
    L"kill('KILL', $guard) if $guard;"
    // More than one try: processes that Chromium has started outlive it by a moment, and write there.
    L"for (1 .. 30) {"
    L" last if $status == 21 || !length($temporary) || !-e $temporary;"
    L" system('/bin/rm', '-rf', '--', $temporary); select(undef, undef, undef, 0.05) if -e $temporary;"
    L"}"
    L"print(STDERR 'Chromium (process ', $pid, ') has ended with status ', $status, chr(10));"
    L"my $text = sprintf('{%cmethod%c:%cLauncher.exited%c,%cparams%c:{%cstatus%c:%d}}', (34) x 8, $status) . "
    L"chr(0);"
    L"POSIX::write(1, $text, length($text)); shutdown(STDIN, 2); shutdown(STDOUT, 2);";

constexpr std::array<std::wstring_view, 13> kSwitches = {
    L"--remote-debugging-pipe",
    L"--headless=new",
    L"--disable-gpu",
    L"--disable-quic",
    L"--disable-popup-blocking",
    L"--no-first-run",
    L"--no-startup-window",
    L"--disable-background-networking",
    L"--disable-component-update",
    L"--disable-sync",
    // An error page would load its address again, and so abort the host's next navigation.
    L"--disable-auto-reload",
    // A page that comes back out of that cache has no load event; and frames of other sites would be targets of their own.
    L"--disable-features=BackForwardCache,IsolateOrigins,site-per-process",
    L"--disable-site-isolation-trials",
};

std::wstring FromNative(std::string_view name) {
    const int length = static_cast<int>(name.size());
    std::wstring wide(
        static_cast<std::size_t>(MultiByteToWideChar(kNativeCodePage, 0, name.data(), length, nullptr, 0)),
        L'\0');
    MultiByteToWideChar(kNativeCodePage, 0, name.data(), length, wide.data(), static_cast<int>(wide.size()));
    return wide;
}

/// Quoted for a command line: names below Wine may contain quotes and backslashes.
std::wstring Quoted(std::wstring_view argument) {
    std::wstring quoted = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t character : argument) {
        if (character == L'"') {
            quoted.append(backslashes + 1, L'\\');
        }
        backslashes = character == L'\\' ? backslashes + 1 : 0;
        quoted += character;
    }
    return quoted.append(backslashes, L'\\') + L'"';
}

std::wstring CommandLine(const Profile& profile) {
    const std::wstring folder = FromNative(profile.nativeFolder);
    std::wstring line = L"perl -e " + Quoted(kLauncher) + L" -- " + Quoted(profile.temporary ? folder : L"");
    for (const std::wstring_view option : kSwitches) {
        line.append(L" ").append(option);
    }
    return line + L" " + Quoted(L"--user-data-dir=" + folder);
}

DWORD MakeFolder(const std::wstring& folder) {
    std::error_code problem;
    std::filesystem::create_directories(folder, problem);
    const DWORD attributes = GetFileAttributesW(folder.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        const DWORD reason = GetLastError();
        return reason == ERROR_SUCCESS ? DWORD{ERROR_PATH_NOT_FOUND} : reason;
    }
    return (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0 ? DWORD{ERROR_SUCCESS} : DWORD{ERROR_DIRECTORY};
}

} // namespace

std::string NativeFolder(const std::wstring& folder, DWORD& error) {
    using GetNativeName = char*(CDECL*)(LPCWSTR name);
    const auto getNativeName = reinterpret_cast<GetNativeName>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "wine_get_unix_file_name")));
    if (getNativeName == nullptr) {
        error = ERROR_FILE_NOT_FOUND;
        return {};
    }
    error = MakeFolder(folder);
    char* name = error == ERROR_SUCCESS ? getNativeName(folder.c_str()) : nullptr;
    if (name == nullptr) {
        error = error == ERROR_SUCCESS ? DWORD{ERROR_PATH_NOT_FOUND} : error;
        return {};
    }
    std::string result = name;
    // A folder is the same one with and without its last separator.
    while (result.size() > 1 && result.back() == '/') {
        result.pop_back();
    }
    HeapFree(GetProcessHeap(), 0, name);
    return result;
}

DWORD StartChromium(const Profile& profile, const Socket& channel, const Socket& status) {
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdInput = reinterpret_cast<HANDLE>(channel.Get());
    startup.hStdOutput = reinterpret_cast<HANDLE>(status.Get());
    startup.hStdError = INVALID_HANDLE_VALUE;
    PROCESS_INFORMATION process{};
    std::wstring line = CommandLine(profile);
    if (CreateProcessW(kInterpreter, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                       &process) == FALSE) {
        return GetLastError();
    }
    // Wine gives none for a program of the machine below.
    for (HANDLE handle : {process.hProcess, process.hThread}) {
        if (handle != nullptr) {
            CloseHandle(handle);
        }
    }
    return ERROR_SUCCESS;
}

} // namespace testbed::chromium
