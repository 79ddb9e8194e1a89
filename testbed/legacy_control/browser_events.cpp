// Most arguments are variants by reference, for which the host looks into another variant.
#include "browser_events.h"

#include <exdispid.h>

#include "variant.h"

namespace legacy_control {
namespace {

VARIANTARG Reference(Variant& variant) {
    VARIANTARG argument{};
    V_VT(&argument) = VT_BYREF | VT_VARIANT;
    V_VARIANTREF(&argument) = variant.Receive();
    return argument;
}

VARIANTARG Reference(VARIANT_BOOL& flag) {
    VARIANTARG argument{};
    V_VT(&argument) = VT_BYREF | VT_BOOL;
    V_BOOLREF(&argument) = &flag;
    return argument;
}

VARIANTARG Number(LONG number) {
    VARIANTARG argument{};
    V_VT(&argument) = VT_I4;
    V_I4(&argument) = number;
    return argument;
}

VARIANTARG Truth(bool truth) {
    VARIANTARG argument{};
    V_VT(&argument) = VT_BOOL;
    V_BOOL(&argument) = truth ? VARIANT_TRUE : VARIANT_FALSE;
    return argument;
}

} // namespace

VARIANTARG BrowserEvents::Browser() const {
    VARIANTARG argument{};
    V_VT(&argument) = VT_DISPATCH;
    V_DISPATCH(&argument) = &browser_;
    return argument;
}

void BrowserEvents::RaiseText(DISPID event, const std::string& text) const {
    const Variant owner = TextVariant(text);
    source_.Raise(event, {owner.Get()});
}

void BrowserEvents::RaiseUrl(DISPID event, const std::string& url) const {
    Variant text = TextVariant(url);
    source_.Raise(event, {Browser(), Reference(text)});
}

bool BrowserEvents::BeforeNavigate(const std::string& url, LONG flags) const {
    Variant text = TextVariant(url);
    Variant number = NumberVariant(flags);
    Variant frame = TextVariant("");
    Variant post;
    Variant headers = TextVariant("");
    VARIANT_BOOL cancel = VARIANT_FALSE;
    source_.Raise(DISPID_BEFORENAVIGATE2, {Browser(), Reference(text), Reference(number), Reference(frame),
                                           Reference(post), Reference(headers), Reference(cancel)});
    return cancel == VARIANT_FALSE;
}

void BrowserEvents::DownloadBegin() const {
    source_.Raise(DISPID_DOWNLOADBEGIN, {});
}

void BrowserEvents::DownloadComplete() const {
    source_.Raise(DISPID_DOWNLOADCOMPLETE, {});
}

void BrowserEvents::CommandStateChange() const {
    source_.Raise(DISPID_COMMANDSTATECHANGE, {Number(CSC_NAVIGATEBACK), Truth(false)});
    source_.Raise(DISPID_COMMANDSTATECHANGE, {Number(CSC_NAVIGATEFORWARD), Truth(false)});
}

void BrowserEvents::ProgressChange(LONG progress, LONG most) const {
    source_.Raise(DISPID_PROGRESSCHANGE, {Number(progress), Number(most)});
}

void BrowserEvents::StatusTextChange(const std::string& text) const {
    RaiseText(DISPID_STATUSTEXTCHANGE, text);
}

void BrowserEvents::TitleChange(const std::string& title) const {
    RaiseText(DISPID_TITLECHANGE, title);
}

void BrowserEvents::NavigateComplete(const std::string& url) const {
    RaiseUrl(DISPID_NAVIGATECOMPLETE2, url);
}

void BrowserEvents::DocumentComplete(const std::string& url) const {
    RaiseUrl(DISPID_DOCUMENTCOMPLETE, url);
}

bool BrowserEvents::NavigateError(const std::string& url, LONG status) const {
    Variant text = TextVariant(url);
    Variant frame = TextVariant("");
    Variant code = NumberVariant(status);
    VARIANT_BOOL cancel = VARIANT_FALSE;
    source_.Raise(DISPID_NAVIGATEERROR,
                  {Browser(), Reference(text), Reference(frame), Reference(code), Reference(cancel)});
    return cancel == VARIANT_FALSE;
}

} // namespace legacy_control
