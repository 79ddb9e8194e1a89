// Document scripts, the bridge, and the boxes that scripts open.
#include "tests/unit/chromium/chromium_test.h"

namespace chromium_test {
namespace {

constexpr const char* kShim =
    "(send) => {"
    "  window.ask = (text) => new Promise((resolve) => { window.answer = resolve; send(text); });"
    "  return (text) => window.answer(text);"
    "}";

class Scripts : public ChromiumTest {
  protected:
    Scripts() {
        site_.Add("/page", "<script>window.seen = window.order || 'nothing'</script>");
        site_.Add("/other", "other");
        site_.Add("/asks", "<script>ask('one').then((text) => { document.title = text })</script>");
        site_.Add("/alerts", "<script>alert('hear'); window.answered = confirm('well?')</script>");
    }

    std::string AddScript(const std::string& source) {
        const auto id = std::make_shared<std::string>();
        page_->AddDocumentScript(source, [id](const auto& added) { *id = added.value_or("failed"); });
        EXPECT_TRUE(PumpUntil([&] { return !id->empty(); }));
        return *id;
    }

    /// Answers the message boxes of a title with a button, and counts them.
    void AnswerBoxes(const std::string& title, WPARAM button) {
        answered_ = nullptr;
        ticks_ = std::make_unique<Ticks>([this, title, button] {
            if (const HWND box = FindBox(title); box != nullptr) {
                boxes_ += box == std::exchange(answered_, box) ? 0 : 1;
                // Again, if it has not gone since: a box may come up with its loop not yet running.
                PostMessageW(box, WM_COMMAND, button, 0);
            }
        });
    }

    std::unique_ptr<Ticks> ticks_;
    HWND answered_ = nullptr; // the last one
    int boxes_ = 0;
};

TEST_F(Scripts, OfDocumentsRunBeforeThoseOfThePageInTheirOrder) {
    AddScript("window.order = 'first'");
    AddScript("window.order += ' second'");
    Visit(*page_, client_, site_.Url("/page"));
    EXPECT_EQ(Evaluate(*page_, "window.seen"), "\"first second\"");
}

TEST_F(Scripts, OfDocumentsRunNoMoreOnceRemoved) {
    const std::string id = AddScript("window.order = 'first'");
    page_->RemoveDocumentScript(id);
    Visit(*page_, client_, site_.Url("/page"));
    EXPECT_EQ(Evaluate(*page_, "window.seen"), "\"nothing\"");
}

TEST_F(Scripts, OfDocumentsReachFramesOfOtherSites) {
    AddScript("window.order = 'in ' + location.pathname");
    std::string frame = site_.Url("/page");
    frame.replace(frame.find("127.0.0.1"), 9, "localhost");
    site_.Add("/outer", "<iframe onload='frames[0].postMessage(1, \"*\")' src='" + frame + "'></iframe>");
    AddScript("if (parent !== window) onmessage = () => parent.postMessage(window.seen, '*');"
              "else onmessage = (event) => { document.title = event.data }");
    Visit(*page_, client_, site_.Url("/outer"));
    EXPECT_TRUE(PumpUntil([&] { return Evaluate(*page_, "document.title") == "\"in /page\""; }));
}

TEST_F(Scripts, DoNotRunWhileSwitchedOff) {
    page_->SetScriptEnabled(false);
    Visit(*page_, client_, site_.Url("/page"));
    page_->SetScriptEnabled(true);
    EXPECT_EQ(Evaluate(*page_, "String(window.seen)"), "\"undefined\"");
}

TEST_F(Scripts, EvaluatedGiveTheirResult) {
    EXPECT_EQ(Evaluate(*page_, "[1, 'two', {three: null}]"), R"([1,"two",{"three":null}])");
    EXPECT_EQ(Evaluate(*page_, "undefined"), "null");
    EXPECT_EQ(Evaluate(*page_, "Promise.resolve('later')"), "\"later\"");
    EXPECT_EQ(Evaluate(*page_, "throw 1"), "null");
    EXPECT_EQ(Evaluate(*page_, "'a lone \\\\ \\ud800 here'"), "\"a lone \\\\ \xEF\xBF\xBD here\"");
}

TEST_F(Scripts, OfThePageTalkOverTheBridgeAndAreAnswered) {
    page_->InstallBridge(kShim);
    client_.onMessage = [](const std::string& message, const auto& reply) {
        reply("answer to \"" + message + "\" \xE2\x82\xAC");
    };
    Visit(*page_, client_, site_.Url("/asks"));
    EXPECT_TRUE(PumpUntil([&] { return Evaluate(*page_, "document.title") != "\"\""; }));
    EXPECT_EQ(client_.messages, std::vector<std::string>{"one"});
    EXPECT_EQ(Evaluate(*page_, "document.title"), "\"answer to \\\"one\\\" \xE2\x82\xAC\"");
    EXPECT_EQ(Evaluate(*page_, "typeof __testbedSend"), "\"undefined\"");
}

TEST_F(Scripts, OfADocumentThatHasGoneGetNoAnswerNorDoesTheNext) {
    page_->InstallBridge(kShim);
    std::function<void(const std::string&)> reply;
    client_.onMessage = [&](const std::string&, const auto& given) { reply = given; };
    Visit(*page_, client_, site_.Url("/asks"));
    ASSERT_TRUE(PumpUntil([&] { return reply != nullptr; }));
    Visit(*page_, client_, site_.Url("/other"));
    Evaluate(*page_, "window.answer = (text) => { document.title = text }");
    reply("too late");
    EXPECT_EQ(Evaluate(*page_, "document.title"), "\"\"");
    page_.reset();
    reply("far too late");
}

TEST_F(Scripts, OpenMessageBoxes) {
    const std::string url = site_.Url("/alerts");
    AnswerBoxes(url, IDOK);
    EXPECT_TRUE(Visit(*page_, client_, url).success);
    EXPECT_EQ(boxes_, 2);
    EXPECT_EQ(Evaluate(*page_, "window.answered"), "true");
}

TEST_F(Scripts, MayAskBeforeTheirPageIsLeft) {
    site_.Add("/asking", "<script>onbeforeunload = (event) => event.preventDefault()</script>");
    for (const auto& [answer, left] : {std::pair{IDCANCEL, false}, {IDOK, true}}) {
        page_ = CreatePage(*browser_, client_);
        ASSERT_TRUE(Visit(*page_, client_, site_.Url("/asking")).success);
        Evaluate(*page_, "'a gesture'");
        boxes_ = 0;
        AnswerBoxes(site_.Url("/asking"), static_cast<WPARAM>(answer));
        EXPECT_EQ(Visit(*page_, client_, site_.Url("/other")).success, left);
        EXPECT_EQ(boxes_, 1);
        ticks_.reset();
    }
}

TEST_F(Scripts, LoseTheirMessageBoxWithTheirPage) {
    const std::string url = site_.Url("/alerts");
    const Ticks ticks([&] {
        if (FindBox(url) != nullptr) {
            page_.reset();
        }
    });
    page_->Navigate(url);
    EXPECT_TRUE(PumpUntil([&] { return page_ == nullptr && FindBox(url) == nullptr; }));
    RecordingClient second;
    EXPECT_NE(CreatePage(*browser_, second), nullptr);
}

TEST_F(Scripts, LoseTheirMessageBoxToAnotherNavigation) {
    site_.Add("/alert", "<script>alert('hear')</script>");
    const std::string url = site_.Url("/alert");
    bool left = false;
    const Ticks ticks([&] {
        if (FindBox(url) != nullptr && !std::exchange(left, true)) {
            page_->Navigate(site_.Url("/other"));
        }
    });
    page_->Navigate(url);
    EXPECT_TRUE(PumpUntil([&] { return page_->Url() == site_.Url("/other"); }));
    EXPECT_TRUE(left);
    EXPECT_EQ(FindBox(url), nullptr);
}

TEST_F(Scripts, AreAnsweredWithoutMessageBoxesWhereThoseAreSwitchedOff) {
    page_->SetScriptDialogsEnabled(false);
    EXPECT_TRUE(Visit(*page_, client_, site_.Url("/alerts")).success);
    EXPECT_EQ(Evaluate(*page_, "window.answered"), "false");
}

} // namespace
} // namespace chromium_test
