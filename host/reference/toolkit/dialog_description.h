// What a description in the resource language means: a dialog, checked, with its layouts put in place. No Windows in it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "toolkit/resource_syntax.h"

namespace host_reference {

/// One side of a component: whether it keeps to that side of its cell, and how many pixels away from it.
struct Side {
    bool attached = false;
    int offset = 0;
};

/// How a component lies in its cell: stretched between two attached sides; else as large as it likes to be, at the attached
/// side, or at the left or top if there is none.
struct Placement {
    Side left;
    Side right;
    Side top;
    Side bottom;
};

/// A part of the page: a window, or a grid of further parts.
struct Element {
    Placement placement;
    int rows = 0; ///< 0 for a window.
    int columns = 0;
    std::vector<Element> children; ///< Row by row; cells at the end may be empty.
    std::size_t window = 0;        ///< Its index in `DialogDescription::windows`.
};

struct WindowDescription {
    std::string name; ///< No two on a dialog have the same.
    bool keyboardInput = false;
};

struct DialogDescription {
    std::string bitmap;        ///< File name of the large icon, UTF-8; empty for none.
    std::string titleBarImage; ///< Of the small one.
    bool alwaysOnTop = false;
    bool systemMenuButton = false;
    bool closeButton = false;
    Element page; ///< Covers all of the dialog's client area.
    std::vector<WindowDescription> windows;
};

/// Reads the dialog of that name. All of the description is checked, other dialogs and layouts included.
/// @throws DescriptionError
DialogDescription ReadDialog(std::string_view description, std::string_view dialog);

inline constexpr int kDeepestLayout = 16;
inline constexpr int kMostRowsOrColumns = 64;

} // namespace host_reference
