// The control as a browser: what the host asks it to load, and what it tells of that.
#include "control.h"

#include <string>
#include <string_view>

#include "testbed/chromium/text.h"
#include "variant.h"

namespace legacy_control {
namespace {

using testbed::chromium::SameName;

constexpr std::string_view kScript = "javascript:";

/// Whether an optional argument says nothing.
bool IsMissing(const VARIANT* value) {
    return value == nullptr || V_VT(value) == VT_EMPTY || V_VT(value) == VT_ERROR || V_VT(value) == VT_NULL ||
           (V_VT(value) == VT_BSTR && SysStringLen(V_BSTR(value)) == 0);
}

LONG NumberIn(VARIANT* value) {
    Variant number;
    return !IsMissing(value) && SUCCEEDED(VariantChangeType(number.Receive(), value, 0, VT_I4))
               ? V_I4(&number.Get())
               : 0;
}

/// Hosts may leave out the scheme, and a port is none.
std::string WithScheme(const std::string& url) {
    const std::size_t colon = url.find(':');
    const bool hasScheme = colon != std::string::npos && colon + 1 < url.size() &&
                           url.find_first_of("./") > colon && (url[colon + 1] < '0' || url[colon + 1] > '9');
    return hasScheme ? url : "http://" + url;
}

bool IsScript(const std::string& url) {
    return SameName(std::string_view(url).substr(0, kScript.size()), kScript);
}

} // namespace

HRESULT Control::Navigate(BSTR url, VARIANT* flags, VARIANT* frame, VARIANT* post, VARIANT* headers) {
    const Self self = this;
    return WithoutExceptions([&]() -> HRESULT {
        if (closed_) {
            return E_UNEXPECTED;
        }
        if (SysStringLen(url) == 0) {
            return E_INVALIDARG;
        }
        if (!IsMissing(frame) || !IsMissing(post) || !IsMissing(headers)) {
            return E_NOTIMPL;
        }
        const std::string address = WithScheme(TextOf(url));
        if (!events_.BeforeNavigate(address, NumberIn(flags))) {
            return HRESULT_FROM_WIN32(ERROR_CANCELLED);
        }
        if (closed_) {
            return E_ABORT;
        }
        if (IsScript(address)) {
            RunScript(address.substr(kScript.size()));
            return S_OK;
        }
        navigation_ = {.running = true, .url = address};
        BeginLoading();
        if (!closed_) {
            page_->Navigate(address);
        }
        return S_OK;
    });
}

void Control::RunScript(const std::string& script) const {
    if (page_->Page() != nullptr) {
        page_->Page()->Evaluate(script, {});
    }
}

HRESULT Control::Refresh() {
    return WithoutExceptions([&]() -> HRESULT {
        if (closed_) {
            return E_UNEXPECTED;
        }
        RunScript("location.reload()");
        return S_OK;
    });
}

HRESULT Control::Stop() {
    const Self self = this;
    return WithoutExceptions([&]() -> HRESULT {
        if (closed_) {
            return E_UNEXPECTED;
        }
        if (page_->Stop()) {
            OnAborted();
        }
        return S_OK;
    });
}

HRESULT Control::Quit() {
    return Close(OLECLOSE_NOSAVE);
}

std::string Control::Url() const {
    return closed_ || page_->Page() == nullptr || !hasDocument_ ? std::string() : page_->Page()->Url();
}

HRESULT Control::get_Document(IDispatch** document) {
    return WithoutExceptions([&]() -> HRESULT {
        if (document == nullptr) {
            return E_POINTER;
        }
        *document = nullptr;
        if (!hasDocument_ || closed_) {
            return S_FALSE;
        }
        const auto made = MakeDocument(Url(), title_);
        *document = made.Get();
        made->AddRef();
        return S_OK;
    });
}

HRESULT Control::get_LocationName(BSTR* name) {
    return WithoutExceptions([&]() -> HRESULT {
        if (name == nullptr) {
            return E_POINTER;
        }
        *name = MakeText(title_.empty() ? Url() : title_);
        return S_OK;
    });
}

HRESULT Control::get_LocationURL(BSTR* url) {
    return WithoutExceptions([&]() -> HRESULT {
        if (url == nullptr) {
            return E_POINTER;
        }
        *url = MakeText(Url());
        return S_OK;
    });
}

HRESULT Control::get_Busy(VARIANT_BOOL* busy) {
    if (busy == nullptr) {
        return E_POINTER;
    }
    *busy = navigation_.running ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

HRESULT Control::get_ReadyState(READYSTATE* state) {
    if (state == nullptr) {
        return E_POINTER;
    }
    *state = state_;
    return S_OK;
}

HRESULT Control::get_Visible(VARIANT_BOOL* visible) {
    if (visible == nullptr) {
        return E_POINTER;
    }
    *visible = visible_ ? VARIANT_TRUE : VARIANT_FALSE;
    return S_OK;
}

HRESULT Control::put_Visible(VARIANT_BOOL visible) {
    const Self self = this;
    SetVisible(visible != VARIANT_FALSE);
    return S_OK;
}

} // namespace legacy_control
