// Interfaces of documents with every method unsupported: a subclass overrides what there is.
#pragma once

#include <windows.h>

#include <mshtml.h>

namespace legacy_control {

/// A document.
class DocumentStubs : public IHTMLDocument2 {
  public:
    // IDispatch
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

    // IHTMLDocument
    HRESULT STDMETHODCALLTYPE get_Script(IDispatch**) override { return E_NOTIMPL; }

    // IHTMLDocument2
    HRESULT STDMETHODCALLTYPE get_all(IHTMLElementCollection**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_body(IHTMLElement**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_activeElement(IHTMLElement**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_images(IHTMLElementCollection**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_applets(IHTMLElementCollection**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_links(IHTMLElementCollection**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_forms(IHTMLElementCollection**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_anchors(IHTMLElementCollection**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_title(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_title(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_scripts(IHTMLElementCollection**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_designMode(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_designMode(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_selection(IHTMLSelectionObject**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_readyState(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_frames(IHTMLFramesCollection2**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_embeds(IHTMLElementCollection**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_plugins(IHTMLElementCollection**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_alinkColor(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_alinkColor(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_bgColor(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_bgColor(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_fgColor(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_fgColor(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_linkColor(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_linkColor(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_vlinkColor(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_vlinkColor(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_referrer(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_location(IHTMLLocation**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_lastModified(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_URL(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_URL(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_domain(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_domain(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_cookie(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_cookie(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_expando(VARIANT_BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_expando(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_charset(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_charset(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_defaultCharset(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_defaultCharset(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_mimeType(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_fileSize(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_fileCreatedDate(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_fileModifiedDate(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_fileUpdatedDate(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_security(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_protocol(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_nameProp(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE write(SAFEARRAY*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE writeln(SAFEARRAY*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE open(BSTR, VARIANT, VARIANT, VARIANT, IDispatch**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE close() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE clear() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE queryCommandSupported(BSTR, VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE queryCommandEnabled(BSTR, VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE queryCommandState(BSTR, VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE queryCommandIndeterm(BSTR, VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE queryCommandText(BSTR, BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE queryCommandValue(BSTR, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE execCommand(BSTR, VARIANT_BOOL, VARIANT, VARIANT_BOOL*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE execCommandShowHelp(BSTR, VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE createElement(BSTR, IHTMLElement**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onhelp(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onhelp(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onclick(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onclick(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_ondblclick(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_ondblclick(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onkeyup(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onkeyup(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onkeydown(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onkeydown(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onkeypress(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onkeypress(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onmouseup(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onmouseup(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onmousedown(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onmousedown(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onmousemove(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onmousemove(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onmouseout(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onmouseout(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onmouseover(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onmouseover(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onreadystatechange(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onreadystatechange(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onafterupdate(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onafterupdate(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onrowexit(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onrowexit(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onrowenter(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onrowenter(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_ondragstart(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_ondragstart(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onselectstart(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onselectstart(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE elementFromPoint(LONG, LONG, IHTMLElement**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_parentWindow(IHTMLWindow2**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_styleSheets(IHTMLStyleSheetsCollection**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onbeforeupdate(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onbeforeupdate(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onerrorupdate(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onerrorupdate(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE toString(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE createStyleSheet(BSTR, LONG, IHTMLStyleSheet**) override { return E_NOTIMPL; }
};

/// The window that a document is in.
class WindowStubs : public IHTMLWindow2 {
  public:
    // IDispatch
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

    // IHTMLFramesCollection2
    HRESULT STDMETHODCALLTYPE item(VARIANT*, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_length(LONG*) override { return E_NOTIMPL; }

    // IHTMLWindow2
    HRESULT STDMETHODCALLTYPE get_frames(IHTMLFramesCollection2**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_defaultStatus(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_defaultStatus(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_status(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_status(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE setTimeout(BSTR, LONG, VARIANT*, LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE clearTimeout(LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE alert(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE confirm(BSTR, VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE prompt(BSTR, BSTR, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Image(IHTMLImageElementFactory**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_location(IHTMLLocation**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_history(IOmHistory**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE close() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_opener(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_opener(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_navigator(IOmNavigator**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_name(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_name(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_parent(IHTMLWindow2**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE open(BSTR, BSTR, BSTR, VARIANT_BOOL, IHTMLWindow2**) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE get_self(IHTMLWindow2**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_top(IHTMLWindow2**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_window(IHTMLWindow2**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE navigate(BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onfocus(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onfocus(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onblur(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onblur(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onload(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onload(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onbeforeunload(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onbeforeunload(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onunload(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onunload(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onhelp(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onhelp(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onerror(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onerror(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onresize(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onresize(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_onscroll(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_onscroll(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_document(IHTMLDocument2**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_event(IHTMLEventObj**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get__newEnum(IUnknown**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE showModalDialog(BSTR, VARIANT*, VARIANT*, VARIANT*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE showHelp(BSTR, VARIANT, BSTR) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_screen(IHTMLScreen**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_Option(IHTMLOptionElementFactory**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE focus() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_closed(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE blur() override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE scroll(LONG, LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_clientInformation(IOmNavigator**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE setInterval(BSTR, LONG, VARIANT*, LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE clearInterval(LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_offscreenBuffering(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_offscreenBuffering(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE execScript(BSTR, BSTR, VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE toString(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE scrollBy(LONG, LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE scrollTo(LONG, LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE moveTo(LONG, LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE moveBy(LONG, LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE resizeTo(LONG, LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE resizeBy(LONG, LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_external(IDispatch**) override { return E_NOTIMPL; }
};

/// An event of a window.
class EventStubs : public IHTMLEventObj {
  public:
    // IDispatch
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return E_NOTIMPL;
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return E_NOTIMPL;
    }

    // IHTMLEventObj
    HRESULT STDMETHODCALLTYPE get_srcElement(IHTMLElement**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_altKey(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_ctrlKey(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_shiftKey(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_returnValue(VARIANT) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_returnValue(VARIANT*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_cancelBubble(VARIANT_BOOL) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_cancelBubble(VARIANT_BOOL*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_fromElement(IHTMLElement**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_toElement(IHTMLElement**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE put_keyCode(LONG) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_keyCode(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_button(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_type(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_qualifier(BSTR*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_reason(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_x(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_y(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_clientX(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_clientY(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_offsetX(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_offsetY(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_screenX(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_screenY(LONG*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE get_srcFilter(IDispatch**) override { return E_NOTIMPL; }
};

} // namespace legacy_control
