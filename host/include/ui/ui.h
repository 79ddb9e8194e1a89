// The calls of the host UI toolkit that are made here. A device is a top-level window of the host, known by its name; its
// components are known by names within it.
//
// Every function answers 0 for success and another number for wrong use: an unknown device, component or code, or another
// thread. All are called on one thread, that of the first call. Texts are UTF-8 where they are narrow.
#pragma once

#if defined(HOST_TOOLKIT_BUILDING_LIBRARY)
#define HOST_TOOLKIT_API __declspec(dllexport)
#else
#define HOST_TOOLKIT_API __declspec(dllimport)
#endif

/// Codes of a device's attributes. The title is a `const wchar_t*`; width and height are `int`, of the window in pixels.
inline constexpr int kUiAttributeTitle = 2;
inline constexpr int kUiAttributeWidth = 70;
inline constexpr int kUiAttributeHeight = 71;

/// Codes of a device's actions: the user closes it, its size has changed, it is being destroyed. The toolkit does not close a
/// device by itself as long as it has a handler for the first.
inline constexpr int kUiActionClose = 5;
inline constexpr int kUiActionResize = 6;
inline constexpr int kUiActionDestroy = 43;

/// Code of the operation that stores the native window of a component (`HWND*` as output).
inline constexpr int kUiOperationGetNativeWindow = 2092;

/// What the toolkit calls back, with the context that it was given; the answer is 0. No exception may leave it. It may call any
/// function of the toolkit, `ui_exit_device` and `ui_destroy_device` of its own device included.
using UiCallback = int (*)(void* context);

/// Makes a device from a description in the toolkit's resource language; its window is not shown yet. `dialog` names the
/// dialog within the description.
extern "C" HOST_TOOLKIT_API int ui_create_device_from_string(const char* device, const char* dialog,
                                                             const char* description);

/// Sets attributes of a component: a list of codes, each followed by its value, that ends with the code 0.
extern "C" HOST_TOOLKIT_API int ui_modify(const char* device, const char* component, ...);

/// Adds a handler to those of an action; they are called in the order in which they were added.
extern "C" HOST_TOOLKIT_API int ui_add_action(const char* device, const char* component, int action,
                                              UiCallback callback, void* context, int end);

/// Makes a handler the only one of an action.
extern "C" HOST_TOOLKIT_API int ui_set_action(const char* device, const char* component, int action,
                                              UiCallback callback, void* context, int end);

/// Lays the device out and makes the native windows of its components.
extern "C" HOST_TOOLKIT_API int ui_manage_device(const char* device);

/// Performs an operation on a component; a device's own name names its window. `output` is written on success only.
extern "C" HOST_TOOLKIT_API int ui_do_operation(const char* device, const char* component, int operation,
                                                int input, void* output, int end);

/// Shows the device and runs it modally: its owner takes no input until it has been exited or destroyed. Messages of all
/// windows of the thread are dispatched meanwhile.
extern "C" HOST_TOOLKIT_API int ui_activate_device(const char* device);

/// Ends `ui_activate_device`, which returns when the present callback has returned. A device that is not active is refused,
/// and may be activated later all the same. Nothing is made of `result`.
extern "C" HOST_TOOLKIT_API int ui_exit_device(const char* device, int result);

/// Calls the handlers of `kUiActionDestroy`, then destroys the device with its windows.
extern "C" HOST_TOOLKIT_API int ui_destroy_device(const char* device);

/// Calls `callback` once, from the message loop, when so many milliseconds have passed.
extern "C" HOST_TOOLKIT_API int ui_set_timer(int milliseconds, UiCallback callback, void* data);
