// What a process holds of the system, to tell that it gives everything back.
#pragma once

#include <cstddef>

namespace test_support {

/// Open handles of this process, without those that Wine 8.0 forgets: to start a program of the machine below, it opens
/// that program's file and never closes it. (Closing it from here ends in handles of others being closed.)
std::size_t CountHandles();

/// Windows of this process: top-level ones with all their children, and message-only ones; without the one that Wine 8.0
/// forgets, which urlmon keeps for good once a download has ended on a thread that is not the window's.
std::size_t CountWindows();

/// GDI objects of this process: pens, brushes, fonts, bitmaps, device contexts.
std::size_t CountGdiObjects();

} // namespace test_support
