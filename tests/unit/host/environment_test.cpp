// dp::Environment against the system's own environment functions.
#include "dp/environment.h"

#include <gtest/gtest.h>

#include "tests/support/scoped_variable.h"

namespace {

using test_support::ReadVariable;
using test_support::ScopedVariable;

constexpr const char* kName = "HOST_TEST_VARIABLE";
constexpr const wchar_t* kWideName = L"HOST_TEST_VARIABLE";
constexpr std::size_t kLongLength = 30000;

TEST(Environment, AbsentVariableReadsAsEmpty) {
    const ScopedVariable variable(kWideName, nullptr);
    EXPECT_EQ(dp::Environment::Get(kName), "");
}

TEST(Environment, NamesAndValuesAreUtf8) {
    const ScopedVariable variable(L"HOST_TEST_\u00c4\u4e2d", L"gr\u00fc\u00df \U0001f511");
    EXPECT_EQ(dp::Environment::Get("HOST_TEST_\xc3\x84\xe4\xb8\xad"), "gr\xc3\xbc\xc3\x9f \xf0\x9f\x94\x91");
}

TEST(Environment, ChangesAtRunTimeAreSeen) {
    const ScopedVariable variable(kWideName, L"before");
    EXPECT_EQ(dp::Environment::Get(kName), "before");
    SetEnvironmentVariableW(kWideName, L"after");
    EXPECT_EQ(dp::Environment::Get(kName), "after");
    SetEnvironmentVariableW(kWideName, nullptr);
    EXPECT_EQ(dp::Environment::Get(kName), "");
}

TEST(Environment, LongValuesAreReadWhole) {
    std::wstring value(kLongLength, L'v');
    value.back() = L'\u00e9';
    const ScopedVariable variable(kWideName, value.c_str());
    EXPECT_EQ(dp::Environment::Get(kName), std::string(kLongLength - 1, 'v') + "\xc3\xa9");
}

TEST(Environment, LongValuesAreSetWhole) {
    const ScopedVariable variable(kWideName, nullptr);
    const std::string value = std::string(kLongLength, 'v') + "end";
    dp::Environment::Put(kName, value.c_str());
    EXPECT_EQ(ReadVariable(kWideName).text, std::wstring(value.begin(), value.end()));
}

TEST(Environment, PutValuesReachTheSystemAsUtf16) {
    const ScopedVariable variable(kWideName, L"old");
    dp::Environment::Put(kName, "gr\xc3\xbc\xc3\x9f");
    EXPECT_EQ(ReadVariable(kWideName).text, L"gr\u00fc\u00df");
}

TEST(Environment, EmptyValueRemovesTheVariable) {
    const ScopedVariable variable(kWideName, L"old");
    dp::Environment::Put(kName, "");
    EXPECT_FALSE(ReadVariable(kWideName).present);
}

TEST(Environment, NullValueRemovesTheVariable) {
    const ScopedVariable variable(kWideName, L"old");
    dp::Environment::Put(kName, nullptr);
    EXPECT_FALSE(ReadVariable(kWideName).present);
}

TEST(Environment, MissingNameReadsAsEmptyAndSetsNothing) {
    for (const char* name : {static_cast<const char*>(nullptr), ""}) {
        dp::Environment::Put(name, "value");
        EXPECT_EQ(dp::Environment::Get(name), "");
    }
}

} // namespace
