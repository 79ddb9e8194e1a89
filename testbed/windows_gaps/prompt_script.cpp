// Reads the script anew for every prompt, so that a test may replace it meanwhile.
#include "prompt_script.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <map>
#include <mutex>
#include <stdexcept>

#include <nlohmann/json.hpp>

#include "environment_text.h"
#include "utf8.h"

namespace windows_gaps {
namespace {

using nlohmann::json;

/// How many answers of the script have been taken before this one.
std::size_t TakePosition(const std::wstring& path) {
    static std::mutex mutex;
    static std::map<std::wstring, std::size_t> positions;
    const std::scoped_lock lock(mutex);
    return positions[path]++;
}

json ReadScript(const std::wstring& path) {
    std::ifstream file{std::filesystem::path(path)};
    if (!file) {
        throw std::runtime_error("the file cannot be opened");
    }
    json script = json::parse(file);
    if (!script.is_array()) {
        throw std::runtime_error("it is no array");
    }
    return script;
}

ScriptedAnswer Understand(const json& entry) {
    ScriptedAnswer answer;
    if (const auto save = entry.find("save"); save != entry.end()) {
        answer.save = save->get<bool>();
    }
    if (entry.contains("user")) {
        answer.kind = ScriptedAnswer::Kind::Given;
        answer.credentials.userName = FromUtf8(entry.at("user").get_ref<const std::string&>());
        answer.credentials.password = FromUtf8(entry.at("password").get_ref<const std::string&>());
    } else if (entry.value("accept", false)) {
        answer.kind = ScriptedAnswer::Kind::Accepted;
    } else if (entry.value("cancel", false)) {
        answer.kind = ScriptedAnswer::Kind::Cancelled;
    } else if (entry.contains("fail")) {
        answer.kind = ScriptedAnswer::Kind::Failed;
        answer.error = entry.at("fail").get<DWORD>();
    } else if (entry.value("malformed", false)) {
        answer.kind = ScriptedAnswer::Kind::Malformed;
    } else {
        throw std::runtime_error("an answer is none of those that there are");
    }
    return answer;
}

} // namespace

std::optional<std::wstring> PromptScriptPath() {
    return EnvironmentText(L"KELDA_PROMPT_SCRIPT");
}

ScriptedAnswer NextScriptedAnswer(const std::wstring& path) try {
    const std::size_t position = TakePosition(path);
    const json script = ReadScript(path);
    return position < script.size() ? Understand(script.at(position)) : ScriptedAnswer{};
} catch (const std::exception& problem) {
    std::fprintf(stderr, "The prompt script %s is of no use: %s\n", ToUtf8(path).c_str(), problem.what());
    ScriptedAnswer answer;
    answer.kind = ScriptedAnswer::Kind::Failed;
    answer.error = ERROR_INVALID_DATA;
    return answer;
}

} // namespace windows_gaps
