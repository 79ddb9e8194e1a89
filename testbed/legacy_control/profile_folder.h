// Where Chromium keeps what it needs while a control is there.
#pragma once

#include <memory>
#include <string>

namespace legacy_control {

/// The name of a folder. It is made when Chromium is started, and its launcher removes it.
class ProfileFolder {
  public:
    ProfileFolder(const ProfileFolder&) = delete;
    ProfileFolder& operator=(const ProfileFolder&) = delete;

    /// The controls of a thread share one, and so their Chromium.
    static std::shared_ptr<ProfileFolder> OfThisThread();

    const std::wstring& Path() const { return path_; }

  private:
    ProfileFolder();

    std::wstring path_;
};

} // namespace legacy_control
