// Import or export of the host utility library's names.
#pragma once

#if defined(HOST_UTILITY_BUILDING_LIBRARY)
#define HOST_UTILITY_API __declspec(dllexport)
#else
#define HOST_UTILITY_API __declspec(dllimport)
#endif
