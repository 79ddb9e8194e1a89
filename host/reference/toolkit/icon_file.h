// Icons from picture files that stand beside the program.
#pragma once

#include <windows.h>

#include <memory>
#include <string>
#include <type_traits>

namespace host_reference {

struct IconDestroyer {
    void operator()(HICON icon) const noexcept { DestroyIcon(icon); }
};
using UniqueIcon = std::unique_ptr<std::remove_pointer_t<HICON>, IconDestroyer>;

/// Reads a PNG file of the running program's folder, scaled to `width` and `height`. `name` is UTF-8.
/// @return nothing where there is no such file, or no picture in it. May throw std::bad_alloc.
UniqueIcon LoadIconFile(const std::string& name, int width, int height);

} // namespace host_reference
