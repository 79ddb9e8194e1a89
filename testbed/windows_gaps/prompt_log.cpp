// Writes a line at a time, so that processes may share a log.
#include "prompt_log.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>

#include <nlohmann/json.hpp>

#include "environment_text.h"
#include "utf8.h"

namespace windows_gaps {
namespace {

using nlohmann::json;

const char* OutcomeName(DWORD error) {
    switch (error) {
    case ERROR_SUCCESS:
        return "answered";
    case ERROR_CANCELLED:
        return "cancelled";
    default:
        return "failed";
    }
}

std::string Line(const PromptRecord& record) {
    const json line = {
        {"caption", ToUtf8(record.caption)},
        {"message", ToUtf8(record.message)},
        {"struct_size", record.structSize},
        {"has_parent", record.hasParent},
        {"flags", record.flags},
        {"auth_package_in", record.authPackageIn},
        {"auth_error", record.authError},
        {"prefilled_user", record.prefilledUser ? json(ToUtf8(*record.prefilledUser)) : json(nullptr)},
        {"prefilled_password", record.prefilledPassword},
        {"save_before", record.saveBefore},
        {"save_after", record.saveAfter},
        {"outcome", OutcomeName(record.error)},
        {"error", record.error},
    };
    return line.dump() + '\n';
}

} // namespace

void AppendToPromptLog(const PromptRecord& record) try {
    const auto path = EnvironmentText(L"KELDA_PROMPT_LOG");
    if (!path) {
        return;
    }
    std::ofstream file(std::filesystem::path(*path), std::ios::binary | std::ios::app);
    file << Line(record) << std::flush;
    if (!file) {
        std::fprintf(stderr, "The prompt log %s cannot be written.\n", ToUtf8(*path).c_str());
    }
} catch (const std::exception& problem) {
    std::fprintf(stderr, "The prompt log could not be written: %s\n", problem.what());
}

} // namespace windows_gaps
