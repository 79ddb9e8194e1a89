// The viewer's command line.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace viewer {

struct Options {
    std::string server;
    std::string path;
    std::string document;
    std::wstring output;
    std::wstring trace;
    std::wstring prompt = L"Log in to the document server";
    std::wstring caption = L"Document viewer";
    bool probeOnly = false;
    bool help = false;
};

/// Reads the arguments (without the program's name).
/// @return nothing where they are wrong; `problem` then holds one sentence that says so.
std::optional<Options> ParseOptions(const std::vector<std::wstring>& arguments, std::string& problem);

/// What `--help` prints, and bad usage too.
const char* UsageText();

} // namespace viewer
