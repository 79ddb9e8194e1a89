// The host's side: the site that the control is in, and what else that object is.
#pragma once

#include <string>

#include <windows.h>

#include <docobj.h>
#include <mshtmhst.h>
#include <nlohmann/json.hpp>
#include <oleidl.h>
#include <wrl/client.h>

#include "document.h"

namespace legacy_control {

/// Holds the host by reference. A copy keeps it during a call in which the control may lose its site.
class HostSite {
  public:
    HostSite() = default;
    /// Asks the site what it is, and for what it wants.
    explicit HostSite(IOleClientSite* site);

    /// Whether there is a site.
    explicit operator bool() const { return site_; }

    IOleClientSite* Site() const { return site_.Get(); }
    /// Null if the site lets nothing be active in place.
    Microsoft::WRL::ComPtr<IOleInPlaceSite> InPlaceSite() const;

    /// Calls a member of the object that the host has for scripts. Nothing comes of it if there is no such object or member.
    ///
    /// @param arguments an array.
    void CallExternal(const std::string& name, const nlohmann::json& arguments) const;

    /// Tells the host of a script's error.
    ///
    /// @param document one with that error.
    /// @return whether the host has taken it, and scripts may go on.
    bool TakesScriptError(IHTMLDocument2* document) const;

  private:
    Microsoft::WRL::ComPtr<IOleClientSite> site_;
    Microsoft::WRL::ComPtr<IDocHostUIHandler> handler_;
    Microsoft::WRL::ComPtr<IOleCommandTarget> commands_;
};

} // namespace legacy_control
