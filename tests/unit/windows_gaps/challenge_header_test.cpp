// Which answers hold a Basic challenge.
#include "testbed/windows_gaps/challenge_header.h"

#include <ostream>
#include <string>

#include <gtest/gtest.h>

namespace windows_gaps {

void PrintTo(BasicChallenge challenge, std::ostream* stream) {
    *stream << (challenge == BasicChallenge::None      ? "None"
                : challenge == BasicChallenge::Leading ? "Leading"
                                                       : "Listed");
}

} // namespace windows_gaps

namespace windows_gaps_test {
namespace {

using windows_gaps::BasicChallenge;
using windows_gaps::FindBasicChallenge;

struct Case {
    const char* name;
    const wchar_t* headers;
    BasicChallenge expected;
};

const Case kCases[] = {
    {"Usual", L"HTTP/1.1 401 No\r\nWWW-Authenticate: Basic realm=\"a\"\r\n\r\n", BasicChallenge::Leading},
    {"NoRealm", L"WWW-Authenticate: Basic\r\n", BasicChallenge::Leading},
    {"LowerCase", L"www-authenticate: basic REALM=a\r\n", BasicChallenge::Leading},
    {"UpperCase", L"WWW-AUTHENTICATE: BASIC\r\n", BasicChallenge::Leading},
    {"NoLineEnd", L"WWW-Authenticate: Basic", BasicChallenge::Leading},
    {"BareLineFeeds", L"A: b\nWWW-Authenticate: Basic\nC: d\n", BasicChallenge::Leading},
    {"ManyBlanks", L"WWW-Authenticate: \t  Basic \t realm=\"a\"\r\n", BasicChallenge::Leading},
    {"NoBlank", L"WWW-Authenticate:Basic\r\n", BasicChallenge::Leading},
    {"SecondLine", L"WWW-Authenticate: Negotiate\r\nWWW-Authenticate: Basic realm=\"a\"\r\n",
     BasicChallenge::Leading},
    {"FirstOfLine", L"WWW-Authenticate: Basic realm=\"a\", Digest realm=\"b\"\r\n", BasicChallenge::Leading},
    {"LaterInLine", L"WWW-Authenticate: Digest realm=\"b\", nonce=\"c\", Basic realm=\"a\"\r\n",
     BasicChallenge::Listed},
    {"AfterToken", L"WWW-Authenticate: NTLM abc==, Basic\r\n", BasicChallenge::Listed},
    {"AfterEmptyElement", L"WWW-Authenticate: , Basic\r\n", BasicChallenge::Listed},
    {"ListedThenLeading", L"WWW-Authenticate: Digest a=b, Basic\r\nWWW-Authenticate: Basic\r\n",
     BasicChallenge::Leading},
    {"LeadingThenNone", L"WWW-Authenticate: Basic\r\nWWW-Authenticate: Digest a=b\r\n",
     BasicChallenge::Leading},
    {"Quoted", L"WWW-Authenticate: Digest realm=\"x, Basic realm=y\"\r\n", BasicChallenge::None},
    {"QuotedWithEscape", L"WWW-Authenticate: Digest realm=\"x\\\", Basic \"\r\n", BasicChallenge::None},
    {"AfterEscape", L"WWW-Authenticate: Digest realm=\"x\\\\\", Basic\r\n", BasicChallenge::Listed},
    {"EndsInEscape", L"WWW-Authenticate: Digest realm=\"x\\", BasicChallenge::None},
    {"QuotationLeftOpen", L"WWW-Authenticate: Digest realm=\"x, Basic\r\n", BasicChallenge::None},
    {"ParameterOfThatName", L"WWW-Authenticate: Digest a=b, basic=1\r\n", BasicChallenge::None},
    {"ParameterWithBlank", L"WWW-Authenticate: Digest a=b, basic = 1\r\n", BasicChallenge::None},
    {"LongerWord", L"WWW-Authenticate: Basics realm=\"a\"\r\n", BasicChallenge::None},
    {"OtherScheme", L"WWW-Authenticate: Digest realm=\"a\"\r\n", BasicChallenge::None},
    {"OtherHeader", L"Proxy-Authenticate: Basic realm=\"a\"\r\n", BasicChallenge::None},
    {"WithinAValue", L"X: WWW-Authenticate: Basic\r\n", BasicChallenge::None},
    {"Empty", L"", BasicChallenge::None},
    {"EmptyValue", L"WWW-Authenticate:\r\n", BasicChallenge::None},
    {"NoColon", L"WWW-Authenticate Basic\r\n", BasicChallenge::None},
};

class ChallengeHeader : public ::testing::TestWithParam<Case> {};

TEST_P(ChallengeHeader, IsRecognised) {
    EXPECT_EQ(FindBasicChallenge(GetParam().headers), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Forms, ChallengeHeader, ::testing::ValuesIn(kCases),
                         [](const auto& one) { return std::string(one.param.name); });

} // namespace
} // namespace windows_gaps_test
