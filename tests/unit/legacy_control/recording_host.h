// A host of the control: a site, a listener and an object for scripts, which write down every call.
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <windows.h>

#include <docobj.h>
#include <exdisp.h>
#include <mshtmhst.h>
#include <oleidl.h>

namespace legacy_control_test {

/// One event or call of a member: what kind each argument has, the first one first, and as a text.
struct RecordedCall {
    DISPID member = 0;
    WORD flags = 0;
    std::vector<std::string> kinds;
    std::vector<std::string> values;
};

/// Makes an IDispatch of a function. Belongs to its owner; references are only counted.
class CountedDispatch : public IDispatch {
  public:
    using Called = std::function<void(DISPID member, WORD flags, DISPPARAMS* parameters)>;

    explicit CountedDispatch(Called called) : called_(std::move(called)) {}
    virtual ~CountedDispatch() = default;
    CountedDispatch(const CountedDispatch&) = delete;
    CountedDispatch& operator=(const CountedDispatch&) = delete;

    LONG References() const { return references_; }
    /// Interfaces that it was asked for.
    const std::vector<IID>& Asked() const { return asked_; }
    /// Names and their numbers; others it does not know.
    std::vector<std::pair<std::wstring, DISPID>> members;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references_); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references_); }
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override;
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT index, LCID locale, ITypeInfo** information) override;
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID id, LPOLESTR* names, UINT count, LCID locale,
                                            DISPID* found) override;
    HRESULT STDMETHODCALLTYPE Invoke(DISPID member, REFIID id, LCID locale, WORD flags,
                                     DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                                     UINT* badArgument) override;

  private:
    Called called_;
    LONG references_ = 0;
    std::vector<IID> asked_;
};

/// Belongs to the test; references are only counted.
class RecordingHost final : public IOleClientSite,
                            public IOleInPlaceSite,
                            public IDocHostUIHandler,
                            public IOleCommandTarget {
  public:
    RecordingHost();
    virtual ~RecordingHost() = default;
    RecordingHost(const RecordingHost&) = delete;
    RecordingHost& operator=(const RecordingHost&) = delete;

    /// The window that the control comes into.
    HWND window = nullptr;
    RECT position{0, 0, 300, 200};
    /// What Exec answers.
    HRESULT commandResult = S_OK;
    bool commandOutput = true;
    bool hasCommands = true;
    /// Called inside calls of that name, and inside events as "event NUMBER".
    std::function<void(const std::string& call)> onCall;
    /// Called inside events: may cancel.
    std::function<bool(const RecordedCall& event)> cancels;

    /// Names of calls of the site, in order.
    std::vector<std::string> calls;
    std::vector<RecordedCall> events;
    std::vector<RecordedCall> scriptCalls;
    /// What the host has read of script errors: "name=value" of each of its members.
    std::vector<std::string> scriptErrors;
    DWORD frameInformationSize = 0;

    CountedDispatch sink;
    CountedDispatch external;

    /// All that the control holds of the host.
    LONG References() const { return references_ + sink.References() + external.References(); }

    /// The numbers of all events so far, without those that tell of progress and status.
    std::vector<DISPID> Steps() const;
    const RecordedCall* Find(DISPID event) const;
    std::size_t Count(DISPID event) const;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID id, void** object) override;
    ULONG STDMETHODCALLTYPE AddRef() override { return static_cast<ULONG>(++references_); }
    ULONG STDMETHODCALLTYPE Release() override { return static_cast<ULONG>(--references_); }

    // IOleClientSite
    HRESULT STDMETHODCALLTYPE SaveObject() override;
    HRESULT STDMETHODCALLTYPE GetMoniker(DWORD assign, DWORD which, IMoniker** moniker) override;
    HRESULT STDMETHODCALLTYPE GetContainer(IOleContainer** container) override;
    HRESULT STDMETHODCALLTYPE ShowObject() override;
    HRESULT STDMETHODCALLTYPE OnShowWindow(BOOL show) override;
    HRESULT STDMETHODCALLTYPE RequestNewObjectLayout() override;

    // IOleInPlaceSite
    HRESULT STDMETHODCALLTYPE GetWindow(HWND* found) override;
    HRESULT STDMETHODCALLTYPE ContextSensitiveHelp(BOOL enter) override;
    HRESULT STDMETHODCALLTYPE CanInPlaceActivate() override;
    HRESULT STDMETHODCALLTYPE OnInPlaceActivate() override;
    HRESULT STDMETHODCALLTYPE OnUIActivate() override;
    HRESULT STDMETHODCALLTYPE GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document,
                                               LPRECT placed, LPRECT clip,
                                               LPOLEINPLACEFRAMEINFO information) override;
    HRESULT STDMETHODCALLTYPE Scroll(SIZE extent) override;
    HRESULT STDMETHODCALLTYPE OnUIDeactivate(BOOL undoable) override;
    HRESULT STDMETHODCALLTYPE OnInPlaceDeactivate() override;
    HRESULT STDMETHODCALLTYPE DiscardUndoState() override;
    HRESULT STDMETHODCALLTYPE DeactivateAndUndo() override;
    HRESULT STDMETHODCALLTYPE OnPosRectChange(LPCRECT placed) override;

    // IDocHostUIHandler
    HRESULT STDMETHODCALLTYPE ShowContextMenu(DWORD id, POINT* point, IUnknown* target,
                                              IDispatch* object) override;
    HRESULT STDMETHODCALLTYPE GetHostInfo(DOCHOSTUIINFO* information) override;
    HRESULT STDMETHODCALLTYPE ShowUI(DWORD id, IOleInPlaceActiveObject* object, IOleCommandTarget* target,
                                     IOleInPlaceFrame* frame, IOleInPlaceUIWindow* document) override;
    HRESULT STDMETHODCALLTYPE HideUI() override;
    HRESULT STDMETHODCALLTYPE UpdateUI() override;
    HRESULT STDMETHODCALLTYPE EnableModeless(BOOL enable) override;
    HRESULT STDMETHODCALLTYPE OnDocWindowActivate(BOOL activate) override;
    HRESULT STDMETHODCALLTYPE OnFrameWindowActivate(BOOL activate) override;
    HRESULT STDMETHODCALLTYPE ResizeBorder(LPCRECT border, IOleInPlaceUIWindow* target,
                                           BOOL isFrame) override;
    HRESULT STDMETHODCALLTYPE TranslateAccelerator(LPMSG message, const GUID* group, DWORD id) override;
    HRESULT STDMETHODCALLTYPE GetOptionKeyPath(LPOLESTR* key, DWORD reserved) override;
    HRESULT STDMETHODCALLTYPE GetDropTarget(IDropTarget* target, IDropTarget** own) override;
    HRESULT STDMETHODCALLTYPE GetExternal(IDispatch** object) override;
    HRESULT STDMETHODCALLTYPE TranslateUrl(DWORD translate, LPWSTR url, LPWSTR* translated) override;
    HRESULT STDMETHODCALLTYPE FilterDataObject(IDataObject* object, IDataObject** filtered) override;

    // IOleCommandTarget
    HRESULT STDMETHODCALLTYPE QueryStatus(const GUID* group, ULONG count, OLECMD* commands,
                                          OLECMDTEXT* text) override;
    HRESULT STDMETHODCALLTYPE Exec(const GUID* group, DWORD id, DWORD option, VARIANT* in,
                                   VARIANT* out) override;

  private:
    void Note(const std::string& call);
    void OnEvent(DISPID member, WORD flags, DISPPARAMS* parameters);

    LONG references_ = 0;
};

} // namespace legacy_control_test
