// Texts in the allocator of OLE Automation.
#pragma once

#include <memory>
#include <type_traits>

#include <windows.h>

#include <oleauto.h>

namespace kelda {

struct BstrDeleter {
    void operator()(BSTR text) const noexcept { SysFreeString(text); }
};

using OwnedBstr = std::unique_ptr<std::remove_pointer_t<BSTR>, BstrDeleter>;

} // namespace kelda
