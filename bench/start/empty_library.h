/// @file
/// A library that does nothing.
#pragma once

#ifndef _WIN32
#define EMPTY_LIBRARY_API
#elif defined(empty_library_EXPORTS)
#define EMPTY_LIBRARY_API __declspec(dllexport)
#else
#define EMPTY_LIBRARY_API __declspec(dllimport)
#endif

EMPTY_LIBRARY_API int GetNothing();
