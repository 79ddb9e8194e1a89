// Which options the profile folders in use were opened with: environments on one folder have to agree.
#pragma once

#include <memory>
#include <string>

#include "environment_settings.h"

namespace webview2_runtime {

/// A folder is in use for as long as somebody holds this.
using LiveSettings = std::shared_ptr<const EnvironmentSettings>;

/// Any thread may call this.
///
/// @param folder a full path; upper and lower case are the same.
/// @return null if the folder is in use with other settings.
LiveSettings UseSettings(const std::wstring& folder, const EnvironmentSettings& settings);

} // namespace webview2_runtime
