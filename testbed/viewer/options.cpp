// The viewer's command line.
#include "options.h"

#include "du/string_utilities.h"

namespace viewer {
namespace {

/// Takes the value that follows an option; false where there is none.
bool TakeValue(const std::vector<std::wstring>& arguments, size_t& index, std::wstring& value) {
    if (index + 1 >= arguments.size() || arguments[index + 1].starts_with(L"--")) {
        return false;
    }
    value = arguments[++index];
    return true;
}

/// The option's place in `options` for a text of the narrow or of the wide kind; at most one is set.
struct Target {
    std::string* narrow = nullptr;
    std::wstring* wide = nullptr;
};

Target FindTarget(Options& options, const std::wstring& name) {
    if (name == L"--server") {
        return {&options.server, nullptr};
    }
    if (name == L"--path") {
        return {&options.path, nullptr};
    }
    if (name == L"--get") {
        return {&options.document, nullptr};
    }
    if (name == L"--output") {
        return {nullptr, &options.output};
    }
    if (name == L"--trace") {
        return {nullptr, &options.trace};
    }
    if (name == L"--prompt") {
        return {nullptr, &options.prompt};
    }
    if (name == L"--caption") {
        return {nullptr, &options.caption};
    }
    return {};
}

std::string FindProblem(const Options& options) {
    if (options.help) {
        return {};
    }
    if (options.server.empty()) {
        return "--server is missing.";
    }
    if (options.document.empty() != options.output.empty()) {
        return "--get and --output belong together.";
    }
    return {};
}

} // namespace

std::optional<Options> ParseOptions(const std::vector<std::wstring>& arguments, std::string& problem) {
    Options options;
    for (size_t index = 0; index < arguments.size(); ++index) {
        const std::wstring& name = arguments[index];
        if (name == L"--probe-only") {
            options.probeOnly = true;
            continue;
        }
        if (name == L"--help") {
            options.help = true;
            continue;
        }
        const Target target = FindTarget(options, name);
        if (target.narrow == nullptr && target.wide == nullptr) {
            problem = "\"" + du::WideStrToUtf8(name) + "\" is no option of the viewer.";
            return std::nullopt;
        }
        std::wstring value;
        if (!TakeValue(arguments, index, value)) {
            problem = du::WideStrToUtf8(name) + " needs a value.";
            return std::nullopt;
        }
        if (target.narrow != nullptr) {
            *target.narrow = du::WideStrToUtf8(value);
        } else {
            *target.wide = value;
        }
    }
    problem = FindProblem(options);
    return problem.empty() ? std::optional(options) : std::nullopt;
}

const char* UsageText() {
    return "Logs in to a document server through kelda.dll, and downloads a document with the session it "
           "got.\n"
           "\n"
           "usage: viewer --server URL [--path P] [--get DOC --output FILE] [options]\n"
           "\n"
           "  --server URL    the server's address, for example http://localhost:8080/\n"
           "  --path P        appended to it as it is, for the address that is probed\n"
           "  --get DOC       appended to it as it is, for the document to download once logged in\n"
           "  --output FILE   where the document goes; written only when all of it has arrived\n"
           "  --trace FILE    appends the trace to FILE; \"-\" writes it to stderr\n"
           "  --probe-only    probes and prompts, but opens no login dialog\n"
           "  --prompt TEXT   first line of the credential prompt, start of the login dialog's title\n"
           "  --caption TEXT  caption of the credential prompt\n"
           "  --help          prints this\n"
           "\n"
           "exit status:\n"
           "  0  logged in, and the document, where one was asked for, is there\n"
           "  1  the program itself could not start\n"
           "  2  wrong arguments\n"
           "  3  not logged in\n"
           "  4  logged in, but the document could not be downloaded\n"
           "  5  the output or the trace file could not be written\n"
           "  10 + the probe's status, with --probe-only, where it is not Authenticated:\n"
           "     10 None, 11 FormBasedRequired, 13 Failed, 14 Cancelled, 15 Unauthorized\n";
}

} // namespace viewer
