// Servers that ask for a client certificate: who decides, and what the server hears of it.
#include "tests/unit/webview2_runtime/client_certificate_test.h"

namespace webview2_runtime_test {
namespace {

using test_support::Answer;

TEST_F(WithThreeClientCertificates, TheSelectedOneIsToldToTheServerFromThenOn) {
    int calls = 0;
    OnClientCertificate([&](auto* arguments) {
        ++calls;
        Select(arguments, 1);
    });
    for (int load = 1; load <= 2; ++load) {
        ASSERT_TRUE(Load(server.Url(L"/page")));
        EXPECT_EQ(Told(server, "/page"), "Test client 2");
        EXPECT_EQ(Told(server, "/style.css"), "Test client 2");
        EXPECT_EQ(calls, 1);
    }
}

TEST_F(WithThreeClientCertificates, EachServerAsksOnceRedirectsIncluded) {
    const CannedServer moved([this](const std::string&) {
        const std::wstring target = server.Url(L"/page");
        return Answer(302, "Location: " + std::string(target.begin(), target.end()) + "\r\n", "");
    });
    UINT32 calls = 0;
    OnClientCertificate([&](auto* arguments) { Select(arguments, calls++); });
    ASSERT_TRUE(Load(moved.Url(L"/old")));
    EXPECT_EQ(calls, 2U);
    EXPECT_EQ(Told(moved, "/old"), "Test client 1");
    EXPECT_EQ(Told(server, "/page"), "Test client 2");
    ASSERT_TRUE(Load(moved.Url(L"/old")));
    EXPECT_EQ(calls, 2U);
}

TEST_F(WithThreeClientCertificates, HandledWithoutASelectionSendsNone) {
    int calls = 0;
    const MessageBoxes boxes(kCertificateBox, IDOK);
    OnClientCertificate([&](auto* arguments) {
        ++calls;
        EXPECT_EQ(arguments->put_Handled(TRUE), S_OK);
    });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_FALSE(RequestOf(server, "/style.css").empty());
    EXPECT_EQ(Told(server, "/page") + Told(server, "/style.css"), "");
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(boxes.Count(), 0);
}

TEST_F(WithThreeClientCertificates, WhatIsSelectedButNotHandledIsLeftToAPerson) {
    std::wstring text;
    HWND owner = nullptr;
    const MessageBoxes boxes(kCertificateBox, IDOK, [&](HWND box) {
        text = MessageBoxes::TextOf(box);
        owner = GetWindow(box, GW_OWNER);
    });
    OnClientCertificate([](auto* arguments) {
        EXPECT_EQ(arguments->put_SelectedCertificate(CertificateAt(arguments, 2).Get()), S_OK);
    });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(boxes.Count(), 1);
    EXPECT_EQ(owner, parent);
    for (const wchar_t* subject : {L"Test client 1", L"Test client 2", L"Test client 3"}) {
        EXPECT_NE(text.find(subject), std::wstring::npos) << text;
    }
    EXPECT_EQ(Told(server, "/page"), "Test client 1");
}

TEST_F(WithThreeClientCertificates, APersonMayDeclineAndIsNotAskedAgain) {
    const MessageBoxes boxes(kCertificateBox, IDCANCEL);
    ASSERT_TRUE(Load(server.Url(L"/page")));
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(boxes.Count(), 1);
    EXPECT_FALSE(RequestOf(server, "/page").empty());
    EXPECT_EQ(Told(server, "/page"), "");
}

TEST_F(WithThreeClientCertificates, TheBoxFollowsTheWebViewToItsNewWindow) {
    const HWND other = CreateWindowExW(0, L"STATIC", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 300,
                                       nullptr, nullptr, nullptr, nullptr);
    const HWND inner =
        CreateWindowExW(0, L"STATIC", L"", WS_CHILD, 0, 0, 200, 200, other, nullptr, nullptr, nullptr);
    ASSERT_EQ(controller->put_ParentWindow(inner), S_OK);
    HWND owner = nullptr;
    const MessageBoxes boxes(kCertificateBox, IDOK, [&](HWND box) {
        owner = GetWindow(box, GW_OWNER);
        EXPECT_EQ(IsWindowEnabled(other), FALSE);
    });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(owner, other);
    EXPECT_EQ(controller->put_ParentWindow(parent), S_OK);
    DestroyWindow(other);
}

TEST_F(WithThreeClientCertificates, CancelAbortsThePageAndTheNextRequestAsksAgain) {
    int calls = 0;
    const MessageBoxes boxes(kCertificateBox, IDOK);
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    OnRequested([](auto*) { ADD_FAILURE() << "an aborted request was shown"; });
    OnClientCertificate([&](auto* arguments) {
        ++calls;
        Select(arguments, 0);
        EXPECT_EQ(arguments->put_Cancel(TRUE), S_OK);
    });
    for (int load = 1; load <= 2; ++load) {
        const auto completion = Load(server.Url(L"/page"));
        ASSERT_TRUE(completion);
        EXPECT_FALSE(completion->succeeded);
        EXPECT_EQ(completion->status, COREWEBVIEW2_WEB_ERROR_STATUS_OPERATION_CANCELED);
        EXPECT_EQ(calls, load);
    }
    EXPECT_TRUE(server.Requests().empty());
    EXPECT_EQ(boxes.Count(), 0);
}

TEST_F(WithThreeClientCertificates, CancelForAPartOfAPageSendsItWithoutACertificate) {
    const CannedServer outer([this](const std::string&) {
        const std::wstring sheet = server.Url(L"/style.css");
        return Answer(200, "Content-Type: text/html\r\n",
                      "<link rel=icon href=data:,><link rel=stylesheet href=" +
                          std::string(sheet.begin(), sheet.end()) + ">");
    });
    const std::wstring outerUrl = outer.Url(L"/outer");
    OnClientCertificate([&](auto* arguments) {
        const std::wstring port = ServerOf(arguments).substr(sizeof("127.0.0.1"));
        if (outerUrl.find(L":" + port + L"/") != std::wstring::npos) {
            Select(arguments, 0);
        } else {
            EXPECT_EQ(arguments->put_Cancel(TRUE), S_OK);
        }
    });
    const auto completion = Load(outerUrl);
    ASSERT_TRUE(completion);
    EXPECT_TRUE(completion->succeeded);
    EXPECT_EQ(Told(outer, "/outer"), "Test client 1");
    EXPECT_FALSE(RequestOf(server, "/style.css").empty());
    EXPECT_EQ(Told(server, "/style.css"), "");
}

TEST_F(WithThreeClientCertificates, TheEventComesBetweenThoseOfTheNavigationAndOfTheRequest) {
    std::string order;
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*/page", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    OnStarting([&](auto*) { order += "S"; });
    OnRequested([&](auto*) { order += "R"; });
    OnClientCertificate([&](auto* arguments) {
        order += "C";
        Select(arguments, 0);
    });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(order, "SCR");
}

TEST_F(WithThreeClientCertificates, WhatTheServerIsToldIsOutOfReachOfHostAndPage) {
    std::wstring seen = L"none";
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    OnRequested([&](auto* arguments) {
        ComPtr<ICoreWebView2WebResourceRequest> request;
        ComPtr<ICoreWebView2HttpRequestHeaders> headers;
        BOOL contains = TRUE;
        EXPECT_EQ(arguments->get_Request(&request), S_OK);
        EXPECT_EQ(request->get_Headers(&headers), S_OK);
        EXPECT_EQ(headers->Contains(L"X-Client-Certificate", &contains), S_OK);
        EXPECT_EQ(contains, FALSE);
        EXPECT_EQ(headers->SetHeader(L"x-client-certificate", L"forged"), S_OK);
    });
    UINT32 calls = 0;
    OnClientCertificate([&](auto* arguments) {
        ++calls;
        EXPECT_EQ(arguments->put_Handled(TRUE), S_OK);
    });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(calls, 1U);
    EXPECT_EQ(RequestOf(server, "/page").find("forged"), std::string::npos);
}

TEST_F(WithThreeClientCertificates, FiltersThatAreRemovedDoNotEndTheAsking) {
    int calls = 0;
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    ASSERT_EQ(view->RemoveWebResourceRequestedFilter(L"*", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    OnClientCertificate([&](auto* arguments) {
        ++calls;
        EXPECT_EQ(arguments->put_Handled(TRUE), S_OK);
    });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(calls, 1);
}

TEST_F(WithThreeClientCertificates, WhatAScriptAsksOfAnotherServerIsToldToo) {
    const CannedServer other([](const std::string&) {
        return Answer(200, "Content-Type: text/plain\r\nAccess-Control-Allow-Origin: *\r\n", "data");
    });
    OnClientCertificate([](auto* arguments) { Select(arguments, 0); });
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(Run(L"fetch('" + other.Url(L"/data") + L"').then((answer) => answer.text())"), L"\"data\"");
    EXPECT_EQ(Told(other, "/data"), "Test client 1");
}

TEST_F(WithThreeClientCertificates, ARemovedHandlerIsNotAsked) {
    const MessageBoxes boxes(kCertificateBox, IDOK);
    const EventRegistrationToken token =
        OnClientCertificate([](auto*) { ADD_FAILURE() << "called after its removal"; });
    EXPECT_EQ(view->remove_ClientCertificateRequested(token), S_OK);
    ASSERT_TRUE(Load(server.Url(L"/page")));
    EXPECT_EQ(boxes.Count(), 1);
}

TEST_F(WithThreeClientCertificates, CloseWorksFromInsideTheHandler) {
    const MessageBoxes boxes(kCertificateBox, IDOK);
    OnClientCertificate([&](auto*) {
        controller->Close();
        ReleaseAll();
    });
    ASSERT_EQ(view->Navigate(server.Url(L"/page").c_str()), S_OK);
    EXPECT_TRUE(PumpUntil([] { return LiveObjects() == 0; }));
    EXPECT_TRUE(server.Requests().empty());
    EXPECT_EQ(boxes.Count(), 0);
}

TEST_F(WithThreeClientCertificates, CloseWorksWhileTheBoxIsOpen) {
    ASSERT_EQ(view->AddWebResourceRequestedFilter(L"*", COREWEBVIEW2_WEB_RESOURCE_CONTEXT_ALL), S_OK);
    OnRequested([](auto*) { ADD_FAILURE() << "called after Close"; });
    const MessageBoxes boxes(kCertificateBox, IDOK, [&](HWND /*box*/) {
        controller->Close();
        ReleaseAll();
    });
    ASSERT_EQ(view->Navigate(server.Url(L"/page").c_str()), S_OK);
    EXPECT_TRUE(PumpUntil([] { return LiveObjects() == 0; }));
    EXPECT_EQ(boxes.Count(), 1);
    EXPECT_TRUE(server.Requests().empty());
}

TEST_F(WithThreeClientCertificates, ChromiumMayDieWhileTheBoxIsOpen) {
    ASSERT_NO_FATAL_FAILURE(UseChromiumOfItsOwn());
    const MessageBoxes boxes(kCertificateBox, IDOK, [&](HWND /*box*/) { KillChromium(); });
    const auto completion = Load(server.Url(L"/page"));
    ASSERT_TRUE(completion);
    EXPECT_FALSE(completion->succeeded);
    EXPECT_EQ(boxes.Count(), 1);
}

} // namespace
} // namespace webview2_runtime_test
