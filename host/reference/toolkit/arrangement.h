// Where the windows of a page lie. No Windows in it.
#pragma once

#include <vector>

#include "toolkit/dialog_description.h"

namespace host_reference {

/// Pixels from `begin` up to, not including, `end`; never ends before it begins.
struct Span {
    int begin = 0;
    int end = 0;

    bool operator==(const Span&) const = default;
};

struct Area {
    Span horizontal;
    Span vertical;

    bool operator==(const Area&) const = default;
};

/// Lays the page out in a client area of that size. Cells of a grid are equal to within a pixel.
/// @return the area of each window, by its index.
std::vector<Area> Arrange(const DialogDescription& description, int width, int height);

/// Width and height of a window that is not stretched.
inline constexpr int kNaturalExtent = 100;

} // namespace host_reference
