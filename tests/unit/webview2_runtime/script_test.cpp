// Scripts of the host's: in every document from its start, and once.
#include "tests/unit/webview2_runtime/runtime_test.h"

namespace webview2_runtime_test {
namespace {

using test_support::Answer;
using test_support::CannedServer;

class ScriptTest : public WebViewTest {
  protected:
    CannedServer server{[](const std::string&) {
        return Answer(200, "Content-Type: text/html\r\n",
                      "<link rel=icon href=data:,><script>window.atStart = window.fromHost;</script>");
    }};
};

TEST_F(ScriptTest, DocumentScriptsRunInOrderBeforeThoseOfThePage) {
    const std::wstring first = AddDocumentScript(L"window.fromHost = 'a';");
    const std::wstring second = AddDocumentScript(L"window.fromHost += 'b';");
    EXPECT_FALSE(first.empty());
    EXPECT_NE(first, second);
    ASSERT_TRUE(Load(server.Url()));
    EXPECT_EQ(Run(L"window.atStart"), L"\"ab\"");
}

TEST_F(ScriptTest, ARemovedDocumentScriptRunsNoMore) {
    AddDocumentScript(L"window.fromHost = 'kept';");
    const std::wstring removed = AddDocumentScript(L"window.fromHost = 'removed';");
    EXPECT_EQ(view->RemoveScriptToExecuteOnDocumentCreated(removed.c_str()), S_OK);
    EXPECT_EQ(view->RemoveScriptToExecuteOnDocumentCreated(nullptr), E_POINTER);
    ASSERT_TRUE(Load(server.Url()));
    EXPECT_EQ(Run(L"window.atStart"), L"\"kept\"");
}

TEST_F(ScriptTest, DocumentScriptsRunInFramesOfOtherSites) {
    // Two names of this machine's, so two sites.
    const std::wstring inner = server.Url(L"/inner").replace(7, 9, L"localhost");
    AddDocumentScript(L"addEventListener('message', event => { window.told = event.data; });"
                      L"window.fromHost = 'host';"
                      L"if (parent !== window) parent.postMessage(location.host + fromHost, '*');");
    ASSERT_TRUE(Load(server.Url()));
    Run(L"const frame = document.createElement('iframe'); frame.src = '" + inner +
        L"'; document.documentElement.append(frame);");
    const std::wstring host = inner.substr(7, inner.find(L'/', 7) - 7);
    EXPECT_TRUE(PumpUntil([&] { return Run(L"window.told") == L"\"" + host + L"host\""; }));
}

TEST_F(ScriptTest, ACompletionHandlerIsNotNeeded) {
    EXPECT_EQ(view->AddScriptToExecuteOnDocumentCreated(L"window.fromHost = 1;", nullptr), S_OK);
    EXPECT_EQ(view->ExecuteScript(L"1", nullptr), S_OK);
    ASSERT_TRUE(Load(server.Url()));
    EXPECT_EQ(Run(L"window.atStart"), L"1");
}

TEST_F(ScriptTest, ResultsComeAsJson) {
    struct Row {
        const wchar_t* script;
        const wchar_t* json;
    };
    for (const Row& row : {Row{L"1 + 1", L"2"}, Row{L"'\u00e4\\\"'", L"\"\u00e4\\\"\""},
                           Row{L"({a: [true, null]})", L"{\"a\":[true,null]}"}, Row{L"undefined", L"null"},
                           Row{L"throw new Error('x')", L"null"}, Row{L"no such syntax", L"null"}}) {
        EXPECT_EQ(Run(row.script), row.json) << row.script;
    }
}

TEST_F(ScriptTest, AFailedDocumentScriptIsReportedWhenChromiumIsGone) {
    ASSERT_NO_FATAL_FAILURE(UseChromiumOfItsOwn());
    KillChromium();
    const auto result = Completed<ICoreWebView2AddScriptToExecuteOnDocumentCreatedCompletedHandler, HRESULT>(
        [&](auto* handler) { return view->AddScriptToExecuteOnDocumentCreated(L"1", handler); },
        [](HRESULT code, LPCWSTR id) {
            EXPECT_EQ(id, nullptr);
            return code;
        });
    EXPECT_EQ(result, E_FAIL);
}

} // namespace
} // namespace webview2_runtime_test
