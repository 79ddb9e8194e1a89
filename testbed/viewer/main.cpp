// A small host application: logs in to a document server through kelda.dll, then downloads a document through the same
// system stack with the session it got. An example for integrators, and a support engineer's diagnosing tool.
#include <cstdio>

#include <windows.h>

#include <ole2.h>

#include "download.h"
#include "du/string_utilities.h"
#include "host_reference/device.h"
#include "host_reference/tracing.h"
#include "kelda/kelda.h"
#include "options.h"
#include "outcome.h"
#include "testbed/legacy_control/legacy_control.h"
#include "testbed/windows_gaps/windows_gaps.h"

namespace viewer {
namespace {

constexpr const char* kOwnerDevice = "viewer";

enum ExitCode : int {
    kDone = 0,
    kNotStarted = 1,
    kWrongArguments = 2,
    kNotLoggedIn = 3,
    kNotDownloaded = 4,
    kNotWritten = 5,
    kProbeStatusBase = 10,
};

/// The last line that the viewer prints says what happened.
int Finish(int exitCode, const std::string& text) {
    std::printf("viewer: %s\n", text.c_str());
    return exitCode;
}

/// The apartment of the host's UI thread.
class OleApartment {
  public:
    OleApartment() : result_(OleInitialize(nullptr)) {}
    ~OleApartment() {
        if (SUCCEEDED(result_)) {
            OleUninitialize();
        }
    }
    OleApartment(const OleApartment&) = delete;
    OleApartment& operator=(const OleApartment&) = delete;
    HRESULT Result() const { return result_; }

  private:
    HRESULT result_;
};

/// The host's main window, which owns what the library shows.
class OwnerDevice {
  public:
    OwnerDevice() {
        // The toolkit says no more than that the system refused: why is in the thread's last error.
        SetLastError(ERROR_SUCCESS);
        result_ = host_reference::CreateOwnerDevice(kOwnerDevice, L"Document viewer");
        systemError_ = result_ == 0 ? ERROR_SUCCESS : GetLastError();
    }
    ~OwnerDevice() {
        if (result_ == 0) {
            host_reference::DestroyOwnerDevice(kOwnerDevice);
        }
    }
    OwnerDevice(const OwnerDevice&) = delete;
    OwnerDevice& operator=(const OwnerDevice&) = delete;
    int Result() const { return result_; }
    DWORD SystemError() const { return systemError_; }

  private:
    int result_;
    DWORD systemError_;
};

std::string HexText(HRESULT result) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08lx", static_cast<unsigned long>(result));
    return text;
}

bool SetUpTrace(const Options& options) {
    if (options.trace.empty()) {
        host_reference::SetTraceOutputEnabled(false);
        return true;
    }
    return options.trace == L"-" || host_reference::SetTraceFile(options.trace.c_str());
}

/// @return `kDone`, or the exit code of a login that did not succeed.
int LogIn(const Options& options) {
    if (!options.probeOnly) {
        return kelda::AuthenticateServer(options.prompt, options.caption, kOwnerDevice,
                                         options.server.c_str(), options.path.c_str())
                   ? kDone
                   : kNotLoggedIn;
    }
    const kelda::AuthenticationStatus status = kelda::ApplyBasicAuthentication(
        options.prompt, options.caption, kOwnerDevice, options.server, options.path);
    return status == kelda::AuthenticationStatus::Authenticated ? kDone
                                                                : kProbeStatusBase + static_cast<int>(status);
}

int DownloadDocument(const Options& options) {
    const DownloadResult result = Download(options.server + options.document, options.output);
    switch (result.outcome) {
    case DownloadOutcome::Done:
        return Finish(kDone, "logged in; " + du::WideStrToUtf8(options.output) + " holds " +
                                 std::to_string(result.bytes) + " bytes.");
    case DownloadOutcome::NotServed:
        return Finish(kNotDownloaded,
                      "logged in, but " + options.document + " was not served: " + result.reason + ".");
    case DownloadOutcome::NotWritten:
        break;
    }
    return Finish(kNotWritten, "logged in, but " + result.reason + ".");
}

int Run(const Options& options) {
    if (!SetUpTrace(options)) {
        return Finish(kNotWritten,
                      "the trace file " + du::WideStrToUtf8(options.trace) + " cannot be written.");
    }
    const OleApartment apartment;
    if (FAILED(apartment.Result())) {
        return Finish(kNotStarted, "COM could not be set up: " + HexText(apartment.Result()) + ".");
    }
    const OwnerDevice device;
    if (device.Result() != 0) {
        return Finish(kNotStarted, "the main window could not be made: toolkit result " +
                                       std::to_string(device.Result()) + ", system error " +
                                       std::to_string(device.SystemError()) + ".");
    }
    // Only where Windows is not the real one: does nothing elsewhere, and no host has to call it.
    SupplyWindowsGaps(GetModuleHandleW(L"kelda.dll"));
    SupplyLegacyControl();

    const OutcomeListener listener;
    const int loggedIn = LogIn(options);
    if (loggedIn != kDone) {
        return Finish(loggedIn, "not logged in: " + listener.Explain() + ".");
    }
    return options.document.empty() ? Finish(kDone, "logged in.") : DownloadDocument(options);
}

} // namespace
} // namespace viewer

int wmain(int count, wchar_t** arguments) {
    std::string problem;
    const auto options = viewer::ParseOptions({arguments + 1, arguments + count}, problem);
    if (!options) {
        std::fprintf(stderr, "%s", viewer::UsageText());
        return viewer::Finish(viewer::kWrongArguments, problem);
    }
    if (options->help) {
        std::printf("%s", viewer::UsageText());
        return viewer::kDone;
    }
    return viewer::Run(*options);
}
