// ZENTAVO_API marks what the library exports; everything else stays hidden.
#pragma once

#if defined(ZENTAVO_STATIC)
#define ZENTAVO_API
#elif defined(_WIN32)
#if defined(ZENTAVO_BUILDING_LIBRARY)
#define ZENTAVO_API __declspec(dllexport)
#else
#define ZENTAVO_API __declspec(dllimport)
#endif
#else
#define ZENTAVO_API __attribute__((visibility("default")))
#endif
