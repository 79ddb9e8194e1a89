// The calls of the host UI toolkit that are made here. A device is a top-level window of the host, known by its name; its
// components are known by names within it.
//
// Every function answers 0 for success and another number for wrong use: an unknown device, component or code.
#pragma once

#if defined(HOST_TOOLKIT_BUILDING_LIBRARY)
#define HOST_TOOLKIT_API __declspec(dllexport)
#else
#define HOST_TOOLKIT_API __declspec(dllimport)
#endif

/// Code of the operation that stores the native window of a component (`HWND*` as output).
inline constexpr int kUiOperationGetNativeWindow = 2092;

/// Performs an operation on a component; a device's own name names its window. `output` is written on success only.
extern "C" HOST_TOOLKIT_API int ui_do_operation(const char* device, const char* component, int operation,
                                                int input, void* output, int end);
