// Paths and well-known folders of the host utility library.
#pragma once

#include <string>

#include "du/api.h"

namespace du {

/// Puts a path together from a location and directories pushed below it. All texts are UTF-8.
class HOST_UTILITY_API FileSpec {
  public:
    /// Starts over at `directory`; trailing separators are dropped, but not that of a root ("C:\").
    void SetLocation(const std::string& directory);

    /// One level down; an empty name changes nothing.
    void PushDirectory(const std::string& name);

    /// Joined with backslashes, no trailing separator but that of a root.
    std::string GetPath() const;

  private:
    std::string path_;
};

class HOST_UTILITY_API FileSystem {
  public:
    /// The user's directory for temporary files, UTF-8, in the form of FileSpec::GetPath.
    static std::string GetTempDir();
};

} // namespace du
