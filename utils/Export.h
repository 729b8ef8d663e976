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

// An exported instance of a template is marked where it is declared. Only the library built with
// Visual C++ needs the mark at the definition instead.
#if defined(_MSC_VER) && defined(COMMONPREFERENCES_BUILD)
#define COMMONPREFERENCES_TEMPLATE_DECLARE
#define COMMONPREFERENCES_TEMPLATE_DEFINE COMMONPREFERENCES_API
#else
#define COMMONPREFERENCES_TEMPLATE_DECLARE COMMONPREFERENCES_API
#define COMMONPREFERENCES_TEMPLATE_DEFINE
#endif

// Stands before a constructor whose object must be kept. Older compilers know the attribute, but
// warn that it cannot stand there.
#if (defined(__clang__) && __clang_major__ >= 10) ||                \
    (!defined(__clang__) && defined(__GNUC__) && __GNUC__ >= 10) || \
    (defined(_MSC_VER) && _MSC_VER >= 1924)
#define COMMONPREFERENCES_NODISCARD [[nodiscard]]
#else
#define COMMONPREFERENCES_NODISCARD
#endif
