// Where Chromium keeps what it needs while a control is there.
#pragma once

#include <memory>
#include <string>

namespace legacy_control {

/// A folder that is removed again, within three seconds. Chromium has to have ended by then.
class ProfileFolder {
  public:
    ~ProfileFolder();
    ProfileFolder(const ProfileFolder&) = delete;
    ProfileFolder& operator=(const ProfileFolder&) = delete;

    /// The controls of a thread share one, and so their Chromium.
    static std::shared_ptr<ProfileFolder> OfThisThread();

    /// It is there once Chromium is.
    const std::wstring& Path() const { return path_; }

  private:
    ProfileFolder();

    std::wstring path_;
};

} // namespace legacy_control
