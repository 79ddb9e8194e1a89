// The choice of the profile's folder.
#include "browser_edge/user_data_folder.h"

#include "dp/environment.h"
#include "dp/merido_info.h"
#include "du/file_system.h"
#include "support/trace.h"

namespace kelda {
namespace {

constexpr const char* kProfileDirectory = "zanwbe";

/// Laid out differently from the folder below the preferences, on purpose: that directory is one application's own, the
/// temporary one is everybody's.
std::string BelowTemporaryDirectory() {
    du::FileSpec folder;
    folder.SetLocation(du::FileSystem::GetTempDir());
    folder.PushDirectory("norv");
    folder.PushDirectory(kProfileDirectory);
    folder.PushDirectory(dp::MeridoInfo::GetApplicationName());
    return folder.GetPath();
}

} // namespace

std::string ChooseUserDataFolder() {
    std::string folder = dp::Environment::Get("MERIDO_WEBVIEW2_USER_DATA_FOLDER");
    if (!folder.empty()) {
        kWebBrowserEdgeTrace.Info() << "Using WebView2 user data folder from environment: " << folder;
        return folder;
    }
    std::string preferences;
    if (dp::MeridoInfo::GetMeridoUserPrefsLocalDir(preferences)) {
        du::FileSpec path;
        path.SetLocation(preferences);
        path.PushDirectory(kProfileDirectory);
        return path.GetPath();
    }
    folder = BelowTemporaryDirectory();
    kWebBrowserEdgeTrace.Info() << "Could not find user data folder, using " << folder;
    return folder;
}

} // namespace kelda
