"""Which header declares which name, for check_includes.py. The first header of each list is the one that a finding names."""

import re

# Every header of the standard library that can be met declares these.
ALWAYS_THERE = {"size_t", "ptrdiff_t", "nullptr_t"}

CONTAINERS = ("array", "deque", "list", "map", "set", "span", "string", "string_view", "vector")
STREAMS = ("fstream", "iostream", "sstream")

_STANDARD_HEADERS = {
    "algorithm": "all_of any_of clamp copy copy_if copy_n count count_if equal fill_n find find_if find_if_not for_each for_each_n "
                 "includes max min none_of ranges remove_if replace reverse sort transform",
    "array": "array",
    "atomic": "atomic atomic_flag",
    "charconv": "from_chars to_chars chars_format",
    "chrono": "chrono",
    "cmath": "isfinite nan",
    "compare": "is_gt is_lt strong_ordering",
    "concepts": "same_as",
    "cstddef": "byte",
    "cstdint": "int16_t int32_t int64_t int8_t intptr_t uint16_t uint32_t uint64_t uint8_t uintptr_t",
    "cstdio": "fflush fprintf fputs printf puts snprintf",
    "cstdlib": "_Exit abort abs free malloc",
    "cstring": "memcpy memset strcmp strlen",
    "ctime": "time",
    "cctype": "tolower",
    "cwchar": "swprintf wcscmp wcscpy wcslen wcstoul wmemcpy",
    "cwctype": "towlower",
    "deque": "deque",
    "exception": "exception",
    "filesystem": "filesystem",
    "fstream": "ifstream ofstream",
    "functional": "cref function",
    "iostream": "cin cout",
    "iterator": "back_inserter istreambuf_iterator",
    "limits": "numeric_limits",
    "list": "list",
    "map": "map",
    "memory": "enable_shared_from_this make_shared make_unique shared_ptr unique_ptr weak_ptr",
    "mutex": "mutex scoped_lock",
    "new": "bad_alloc nothrow",
    "optional": "nullopt optional",
    "random": "mt19937",
    "regex": "regex regex_error regex_match regex_replace smatch",
    "set": "set",
    "span": "span",
    "sstream": "istringstream ostringstream wistringstream",
    "stdexcept": "invalid_argument length_error logic_error out_of_range runtime_error",
    "string": "basic_string stoi stoull string string_literals to_string to_wstring wstring",
    "string_view": "string_view string_view_literals wstring_view",
    "system_error": "errc error_code generic_category system_category system_error",
    "thread": "thread",
    "tuple": "make_tuple tie tuple",
    "type_traits": "is_base_of_v is_same_v remove_const_t remove_pointer_t",
    "utility": "exchange forward in_place in_range move pair swap",
    "variant": "variant visit",
    "vector": "vector",
}

STANDARD: dict[str, tuple[str, ...]] = {
    name: (header,) for header, names in _STANDARD_HEADERS.items() for name in names.split()
}
# Names that several headers declare.
STANDARD |= {name: ("iterator", *CONTAINERS) for name in ("begin", "end", "rbegin", "rend", "size", "ssize")}
STANDARD |= {
    "erase_if": tuple(header for header in CONTAINERS if header not in ("array", "span", "string_view")),
    "flush": ("ostream", *STREAMS),
    "getline": ("string", "istream", *STREAMS),
    "in_place": ("optional", "utility", "variant"),
    "initializer_list": ("initializer_list", *CONTAINERS),
    "hex": ("ios", "istream", "ostream", *STREAMS),
    "ios": ("ios", "istream", "ostream", *STREAMS),
    "istream": ("istream", *STREAMS),
    "less": ("functional", "map", "set"),
    "ostream": ("ostream", *STREAMS),
}

# Headers that the build generates, and what they include.
GENERATED = {"webview2_not_implemented.h": "WebView2.h"}

# All of these include windows.h.
WINDOWS = (
    "windows.h", "winsock2.h", "windowsx.h", "objbase.h", "oleauto.h", "ole2.h", "urlmon.h", "wininet.h", "wincred.h",
    "exdisp.h", "mshtml.h", "mshtmhst.h", "unknwn.h", "oleidl.h", "objidl.h", "oaidl.h", "docobj.h", "ocidl.h", "olectl.h",
    "wincodec.h", "winternl.h", "wrl/client.h", "wrl/implements.h", "WebView2.h", "servprov.h",
)

PATTERNS = [
    (re.compile(pattern), headers)
    for pattern, headers in (
        (r"\b(?:TEST|TEST_F|TEST_P|ADD_FAILURE|SCOPED_TRACE|(?:EXPECT|ASSERT)_[A-Z]+)(?=\()",
         ("gtest/gtest.h", "gmock/gmock.h")),
        (r"\b(?:EXPECT_THAT|EXPECT_CALL|MOCK_METHOD)(?=\()", ("gmock/gmock.h",)),
        (r"\bnlohmann::", ("nlohmann/json.hpp",)),
        (r"\bComPtr<", ("wrl/client.h", "wrl/implements.h")),
        (r"\bRuntimeClass<", ("wrl/implements.h",)),
        (r"\b(?:HWND|HRESULT|DWORD|HMODULE|HINSTANCE|HANDLE|LRESULT|WPARAM|LPARAM|CALLBACK|WINAPI)\b", WINDOWS),
        (r"\bInternet[A-Z]\w+(?=\()|\bHINTERNET\b", ("wininet.h",)),
        (r"\b(?:IBindStatusCallback|IHttpNegotiate|IAuthenticate|IInternet\w+|CreateURLMoniker\w*)\b", ("urlmon.h",)),
        (r"\bCred[A-Z]\w+(?=\()|\bCREDUI_\w+", ("wincred.h",)),
        (r"\bIWebBrowser2\b|\bDWebBrowserEvents2\b", ("exdisp.h",)),
        (r"\bIHTML\w+", ("mshtml.h",)),
    )
]
