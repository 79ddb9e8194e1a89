// Answers of the fakes.
#include "tests/support/call_script.h"

#include "du/string_utilities.h"
#include "tests/support/transcript.h"

namespace test_support {
namespace {

template <typename Value>
const Value* Find(const std::map<std::string, Value>& values, const std::string& name,
                  const std::string& nameWithArguments) {
    auto found = values.find(nameWithArguments);
    if (found == values.end()) {
        found = values.find(name);
    }
    return found != values.end() ? &found->second : nullptr;
}

} // namespace

HRESULT CallScript::Call(const std::string& name, const std::string& arguments) const {
    const std::string entry = arguments.empty() ? name : name + " " + arguments;
    if (recordsCalls) {
        Record(entry);
    }
    if (const auto* const happening = Find(during, name, entry)) {
        const auto kept = *happening; // it may change the script
        kept();
    }
    const HRESULT* const answer = Find(answers, name, entry);
    return answer != nullptr ? *answer : S_OK;
}

std::string Narrow(const wchar_t* text) {
    return text != nullptr ? du::WideStrToUtf8(text) : "(null)";
}

} // namespace test_support
