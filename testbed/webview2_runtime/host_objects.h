// The host's objects in the scripts of pages: chrome.webview.hostObjects.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include <windows.h>

#include <oaidl.h>
#include <wrl/client.h>

namespace webview2_runtime {

/// The script that runs in every document before all others: see `testbed::chromium::Page::InstallBridge`.
const char* HostObjectShim();

/// Answers the messages of that script. An object is used through the IDispatch pointer that it was given as, and is never
/// asked for any other interface: hosts' objects may well have no other.
class HostObjects {
  public:
    /// Objects are held by reference. An object of the same name is replaced.
    ///
    /// @param object VT_DISPATCH, by value or by reference.
    /// @return E_INVALIDARG for an empty name, or for a value that is no such object.
    HRESULT Add(const std::wstring& name, const VARIANT& object);

    /// A script that has got the object keeps it.
    ///
    /// @return E_INVALIDARG if there is none of that name.
    HRESULT Remove(const std::wstring& name);

    /// Releases all, also what scripts have got.
    void Clear();

    /// Does what a script has asked for, which calls the host's object.
    ///
    /// @return the reply for the script.
    /// @throws std::exception for what is no message of the script's.
    std::string Answer(const std::string& message);

  private:
    using ObjectRef = Microsoft::WRL::ComPtr<IDispatch>;

    ObjectRef Root(const std::string& name, std::uint64_t handle) const;
    std::uint64_t Keep(ObjectRef object);

    std::map<std::string, ObjectRef> named_;
    std::map<std::uint64_t, ObjectRef> kept_; // what the scripts of the current document have got
    std::uint64_t lastHandle_ = 0;
    std::string document_;
};

} // namespace webview2_runtime
