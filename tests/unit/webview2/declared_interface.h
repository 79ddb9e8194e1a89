// What the test made from the tables asks about each interface that the header declares.
#pragma once

#include <windows.h>

#include <objbase.h>

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "tests/unit/webview2/vtable.h"

namespace webview2_test {

/// @param text 8-4-4-4-12 hexadecimal digits. Read by the system, not by what the declarations read theirs with.
inline void ExpectId(const IID& id, const wchar_t* text) {
    IID expected{};
    ASSERT_EQ(IIDFromString((L"{" + std::wstring(text) + L"}").c_str(), &expected), S_OK);
    EXPECT_TRUE(IsEqualIID(id, expected));
}

/// Declared in `Interface` itself, with exactly these parameters, and called through that slot.
template <typename... Parameters>
struct Taking {
    template <typename Interface, typename Method>
    static void ExpectMethod(const char* name, Method method, std::size_t slot) {
        EXPECT_TRUE((std::is_same_v<Method, HRESULT (STDMETHODCALLTYPE Interface::*)(Parameters...)>))
            << name << " has other parameters";
        EXPECT_EQ(SlotOf(method), slot) << name;
    }
};

/// Extends `Base` directly or not (the slots tell which), and has no more methods than `slots`.
template <typename Interface, typename Base>
void ExpectExtent(std::size_t slots) {
    EXPECT_TRUE((std::is_base_of_v<Base, Interface>));
    EXPECT_EQ(SlotsOf<Interface>(), slots);
}

} // namespace webview2_test
