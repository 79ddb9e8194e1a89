// The class object of the control.
#pragma once

#include <functional>

#include <windows.h>

#include <unknwn.h>
#include <wrl/client.h>

namespace legacy_control {

/// @param gone called when nobody holds the class object any more: COM lets go of what is registered when it is closed on a
///        thread.
/// @throws std::bad_alloc
Microsoft::WRL::ComPtr<IClassFactory> MakeClassObject(std::function<void()> gone);

} // namespace legacy_control
