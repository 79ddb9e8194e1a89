// A document, its window, and the event of that.
#include "document.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

#include "com_object.h"
#include "document_stubs.h"
#include "variant.h"

namespace legacy_control {
namespace {

using Microsoft::WRL::ComPtr;

HRESULT HandOut(const std::string& text, BSTR* out) {
    return WithoutExceptions([&]() -> HRESULT {
        if (out == nullptr) {
            return E_POINTER;
        }
        *out = MakeText(text);
        return S_OK;
    });
}

class ErrorEvent final : public SimpleObject<EventStubs, IDispatch, IHTMLEventObj> {
  public:
    explicit ErrorEvent(ScriptError error) : error_(std::move(error)) {}

    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID /*id*/, LPOLESTR* names, UINT length, LCID /*locale*/,
                                            DISPID* members) override {
        if (names == nullptr || members == nullptr || length != 1) {
            return E_INVALIDARG;
        }
        const auto found = std::ranges::find(kMembers, std::wstring_view(names[0]));
        *members = found == kMembers.end() ? DISPID_UNKNOWN
                                           : kFirstMember + static_cast<DISPID>(found - kMembers.begin());
        return found == kMembers.end() ? DISP_E_UNKNOWNNAME : S_OK;
    }

    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID /*id*/, LCID /*locale*/, WORD flags,
                                     DISPPARAMS* /*parameters*/, VARIANT* result, EXCEPINFO* /*exception*/,
                                     UINT* /*badArgument*/) override {
        return WithoutExceptions([&]() -> HRESULT {
            if (result == nullptr) {
                return E_POINTER;
            }
            if ((flags & DISPATCH_PROPERTYGET) == 0 || member < kFirstMember ||
                member >= kFirstMember + static_cast<DISPID>(kMembers.size())) {
                return DISP_E_MEMBERNOTFOUND;
            }
            Variant value = Value(member);
            VariantInit(result);
            std::swap(*result, *value.Receive());
            return S_OK;
        });
    }

  private:
    static constexpr DISPID kFirstMember = 1;
    static constexpr std::array<std::wstring_view, 5> kMembers = {L"errorUrl", L"errorMessage", L"errorCode",
                                                                  L"errorLine", L"errorCharacter"};

    Variant Value(DISPID member) const {
        switch (member - kFirstMember) {
        case 0:
            return TextVariant(error_.url);
        case 1:
            return TextVariant(error_.message);
        case 2:
            return NumberVariant(error_.code);
        case 3:
            return NumberVariant(error_.line);
        default:
            return NumberVariant(error_.character);
        }
    }

    ScriptError error_;
};

class DocumentWindow final
    : public SimpleObject<WindowStubs, IDispatch, IHTMLFramesCollection2, IHTMLWindow2> {
  public:
    explicit DocumentWindow(ComPtr<IHTMLEventObj> event) : event_(std::move(event)) {}

    HRESULT STDMETHODCALLTYPE get_event(IHTMLEventObj** event) override {
        if (event == nullptr) {
            return E_POINTER;
        }
        *event = event_.Get();
        if (event_) {
            event_->AddRef();
        }
        return S_OK;
    }

  private:
    ComPtr<IHTMLEventObj> event_;
};

class Document final : public SimpleObject<DocumentStubs, IDispatch, IHTMLDocument, IHTMLDocument2> {
  public:
    Document(std::string url, std::string title, ComPtr<IHTMLWindow2> window)
        : url_(std::move(url)), title_(std::move(title)), window_(std::move(window)) {}

    HRESULT STDMETHODCALLTYPE get_URL(BSTR* url) override { return HandOut(url_, url); }
    HRESULT STDMETHODCALLTYPE get_title(BSTR* title) override { return HandOut(title_, title); }
    HRESULT STDMETHODCALLTYPE get_parentWindow(IHTMLWindow2** window) override {
        if (window == nullptr) {
            return E_POINTER;
        }
        *window = window_.Get();
        window_->AddRef();
        return S_OK;
    }

  private:
    std::string url_;
    std::string title_;
    ComPtr<IHTMLWindow2> window_;
};

ComPtr<IHTMLDocument2> Make(const std::string& url, const std::string& title,
                            const ComPtr<IHTMLEventObj>& event) {
    const ComPtr<IHTMLWindow2> window = MakeObject<DocumentWindow>(event);
    return MakeObject<Document>(url, title, window);
}

} // namespace

ComPtr<IHTMLDocument2> MakeDocument(const std::string& url, const std::string& title) {
    return Make(url, title, nullptr);
}

ComPtr<IHTMLDocument2> MakeDocument(const std::string& url, const std::string& title,
                                    const ScriptError& error) {
    return Make(url, title, MakeObject<ErrorEvent>(error));
}

} // namespace legacy_control
