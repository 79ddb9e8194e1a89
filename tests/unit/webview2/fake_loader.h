// What the tests know of the fake loader.
#pragma once

#include <windows.h>

namespace webview2_test {

/// Answers the creation of an environment.
constexpr HRESULT kFakeCreateAnswer = static_cast<HRESULT>(0xa0040123);

} // namespace webview2_test
