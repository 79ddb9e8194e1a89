// The WebBrowser control for test hosts on Wine: a second face on the Chromium of testbed/chromium. On Windows itself
// nothing is touched. README.md tells what it can do.
#pragma once

#include <windows.h>

#if defined(LEGACY_CONTROL_EXPORTS)
#define LEGACY_CONTROL_API __declspec(dllexport)
#else
#define LEGACY_CONTROL_API __declspec(dllimport)
#endif

extern "C" {

/// Makes the WebBrowser class of this thread's apartment the control on Chromium. COM has to be initialised here.
///
/// @return false on Windows itself, where nothing is touched, and on any failure. A second call changes nothing.
///
/// From the first supply on, legacy_control.dll stays loaded until the process ends.
LEGACY_CONTROL_API bool SupplyLegacyControl();

/// Takes that back; controls that are there live on.
LEGACY_CONTROL_API void WithdrawLegacyControl();

/// How many COM objects of this DLL are alive, without the class object. Tests look for leaks with it.
LEGACY_CONTROL_API LONG LegacyControlLiveObjects();

} // extern "C"
