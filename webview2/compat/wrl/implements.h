// Of the platform's wrl/implements.h, which this compiler lacks, what the library uses: Make.
#pragma once

#include <new>
#include <utility>

#include <wrl/client.h>

namespace Microsoft::WRL {

/// A new object, whose first reference is the returned one; null when memory runs out. T starts with a count of 1.
template <typename T, typename... Arguments>
ComPtr<T> Make(Arguments&&... arguments) {
    ComPtr<T> object;
    *object.GetAddressOf() = new (std::nothrow) T(std::forward<Arguments>(arguments)...);
    return object;
}

} // namespace Microsoft::WRL
