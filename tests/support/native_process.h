// What tests do on the machine below Wine: look at its processes, kill one, and remove what a Chromium has left. Programs of
// that machine are started and not waited for, as Wine gives no handle of them.
#pragma once

#include <string>
#include <vector>

namespace test_support {

/// The numbers of the processes that have a text in their command line.
std::vector<int> NativeProcesses(const std::string& mark);

/// Of those, a Chromium's own: not its launcher, and none of its children. 0 if there is none.
int NativeChromium(const std::string& mark);

/// As the process table has it: T for one that is stopped; a question mark for one that has gone.
char NativeState(int process);

/// Starts a program. `arguments` go behind its name in the command line.
void RunNative(const std::wstring& program, const std::wstring& arguments);

/// Kills a process as a crash would. It may go on for a moment.
void KillNative(int process);

/// Removes a folder and all that is in it. Not by Windows' functions: the links to nowhere that a killed Chromium leaves are
/// not seen by those.
void RemoveNatively(const std::wstring& folder);

} // namespace test_support
