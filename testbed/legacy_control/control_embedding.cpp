// The control as an embedded object: its site, its verbs, its end.
#include "control.h"

#include <utility>

#include <olectl.h>

namespace legacy_control {

Control::Control()
    : source_(*this),
      events_(source_, *this),
      page_(std::make_shared<EnginePage>(static_cast<EnginePageOwner&>(*this))) {}

void Control::OnLastRelease() {
    LeaveSite();
    End();
    host_ = {};
}

void Control::End() {
    closed_ = true;
    source_.Silence();
    errorBox_.Close();
    if (const auto page = std::move(page_)) {
        page->Close();
    }
}

HRESULT Control::QueryInterface(REFIID id, void** object) {
    if (object == nullptr) {
        return E_POINTER;
    }
    *object = nullptr;
    const bool found = Answer<IOleObject, IUnknown>(this, id, object) ||
                       Answer<IWebBrowser2, IWebBrowserApp, IWebBrowser, IDispatch>(this, id, object) ||
                       Answer<IPersistStorage, IPersist>(this, id, object) ||
                       Answer<IOleInPlaceObject, IOleWindow>(this, id, object) ||
                       Answer<IOleInPlaceActiveObject>(this, id, object) ||
                       Answer<IConnectionPointContainer>(this, id, object);
    return found ? S_OK : E_NOINTERFACE;
}

// --- IOleObject

HRESULT Control::SetClientSite(IOleClientSite* site) {
    const Self self = this;
    if (site == nullptr) {
        const HostSite last = std::exchange(host_, {});
        if (last) {
            LeaveSite();
            End();
        }
        return S_OK;
    }
    if (closed_) {
        return E_UNEXPECTED;
    }
    const HostSite last = std::exchange(host_, HostSite(site));
    return S_OK;
}

HRESULT Control::GetClientSite(IOleClientSite** site) {
    if (site == nullptr) {
        return E_POINTER;
    }
    *site = host_.Site();
    if (*site != nullptr) {
        (*site)->AddRef();
    }
    return S_OK;
}

HRESULT Control::SetHostNames(LPCOLESTR /*application*/, LPCOLESTR /*object*/) {
    return S_OK;
}

HRESULT Control::Close(DWORD /*saveOption*/) {
    const Self self = this;
    if (!closed_) {
        Deactivate();
        End();
    }
    return S_OK;
}

HRESULT Control::DoVerb(LONG verb, LPMSG /*message*/, IOleClientSite* /*site*/, LONG /*index*/,
                        HWND /*parent*/, LPCRECT position) {
    const Self self = this;
    switch (verb) {
    case OLEIVERB_HIDE:
        SetVisible(false);
        return S_OK;
    case OLEIVERB_PRIMARY:
    case OLEIVERB_SHOW:
    case OLEIVERB_INPLACEACTIVATE:
    case OLEIVERB_UIACTIVATE:
        break;
    default:
        return E_NOTIMPL;
    }
    const HRESULT result = Activate(position);
    if (FAILED(result) || window_ == nullptr) {
        return result;
    }
    if (verb == OLEIVERB_SHOW) {
        SetVisible(true);
    } else if (verb == OLEIVERB_UIACTIVATE) {
        window_->Focus();
    }
    return S_OK;
}

HRESULT Control::Update() {
    return S_OK;
}

HRESULT Control::IsUpToDate() {
    return S_OK;
}

HRESULT Control::GetUserClassID(CLSID* id) {
    return GetClassID(id);
}

HRESULT Control::SetExtent(DWORD aspect, SIZEL* size) {
    if (size == nullptr) {
        return E_POINTER;
    }
    if (aspect != DVASPECT_CONTENT) {
        return DV_E_DVASPECT;
    }
    extent_ = *size;
    return S_OK;
}

HRESULT Control::GetExtent(DWORD aspect, SIZEL* size) {
    if (size == nullptr) {
        return E_POINTER;
    }
    if (aspect != DVASPECT_CONTENT) {
        return DV_E_DVASPECT;
    }
    *size = extent_;
    return S_OK;
}

HRESULT Control::Advise(IAdviseSink* /*sink*/, DWORD* /*connection*/) {
    return OLE_E_ADVISENOTSUPPORTED;
}

HRESULT Control::Unadvise(DWORD /*connection*/) {
    return OLE_E_NOCONNECTION;
}

HRESULT Control::GetMiscStatus(DWORD /*aspect*/, DWORD* status) {
    if (status == nullptr) {
        return E_POINTER;
    }
    *status = OLEMISC_RECOMPOSEONRESIZE | OLEMISC_CANTLINKINSIDE | OLEMISC_INSIDEOUT |
              OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_SETCLIENTSITEFIRST;
    return S_OK;
}

// --- IPersistStorage

HRESULT Control::GetClassID(CLSID* id) {
    if (id == nullptr) {
        return E_POINTER;
    }
    *id = CLSID_WebBrowser;
    return S_OK;
}

HRESULT Control::IsDirty() {
    return S_FALSE;
}

HRESULT Control::InitNew(IStorage* /*storage*/) {
    return S_OK;
}

HRESULT Control::Load(IStorage* /*storage*/) {
    return S_OK;
}

HRESULT Control::Save(IStorage* /*storage*/, BOOL /*sameAsLoad*/) {
    return S_OK;
}

HRESULT Control::SaveCompleted(IStorage* /*storage*/) {
    return S_OK;
}

HRESULT Control::HandsOffStorage() {
    return S_OK;
}

// --- IConnectionPointContainer

HRESULT Control::EnumConnectionPoints(IEnumConnectionPoints** /*points*/) {
    return E_NOTIMPL;
}

HRESULT Control::FindConnectionPoint(REFIID id, IConnectionPoint** point) {
    if (point == nullptr) {
        return E_POINTER;
    }
    *point = nullptr;
    if (id != DIID_DWebBrowserEvents2) {
        return CONNECT_E_NOCONNECTION;
    }
    *point = &source_;
    AddRef();
    return S_OK;
}

} // namespace legacy_control
