// Commands for a host program, a line each on its standard input, and its answers.
#pragma once

#include <functional>
#include <string>

namespace e2e {

/// Prints a line at once.
void Say(const std::string& line);

/// Says "ready", then hands each line to `obey` on this thread, from the message loop, be it this one or one that `obey` runs,
/// and prints what it answers. Returns at the line "quit" and at the end of the input; at "die" the process ends like in a crash.
void RunCommands(const std::function<std::string(const std::string&)>& obey);

} // namespace e2e
