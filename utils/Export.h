/// @file
/// Marks what CommonPreferences.dll exports.
#pragma once

#if !defined(_WIN32) || defined(COMMONPREFERENCES_STATIC)
#define COMMONPREFERENCES_API
#elif defined(COMMONPREFERENCES_BUILD)
#define COMMONPREFERENCES_API __declspec(dllexport)
#else
#define COMMONPREFERENCES_API __declspec(dllimport)
#endif
