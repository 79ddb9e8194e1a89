// Import or export of the library's names.
#pragma once

#if defined(KELDA_BUILDING_LIBRARY)
#define KELDA_API __declspec(dllexport)
#else
#define KELDA_API __declspec(dllimport)
#endif
