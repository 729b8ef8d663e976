#include "utils/WideFormat.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cwchar>

#if defined(_UCRT) && defined(__MINGW32__)
// Missing in the headers of some versions.
extern "C" _CRTIMP _invalid_parameter_handler __cdecl _set_thread_local_invalid_parameter_handler(
    _invalid_parameter_handler handler);
#endif

namespace vemora::utils {
namespace {

#if defined(_UCRT) || defined(_MSC_VER)

/// The universal C runtime ends the process when it refuses a format, unless there is a handler.
/// While this lives, the calls of this thread return an error instead.
class RefusalGuard {
 public:
  RefusalGuard() : earlier_(_set_thread_local_invalid_parameter_handler(&Ignore)) {}
  RefusalGuard(const RefusalGuard&) = delete;
  RefusalGuard& operator=(const RefusalGuard&) = delete;
  ~RefusalGuard() { _set_thread_local_invalid_parameter_handler(earlier_); }

 private:
  static void __cdecl Ignore(const wchar_t* /*expression*/, const wchar_t* /*function*/,
                             const wchar_t* /*file*/, unsigned /*line*/,
                             std::uintptr_t /*reserved*/) {}

  _invalid_parameter_handler earlier_;
};

#else

/// The older C runtime returns an error by itself.
class RefusalGuard {
 public:
  RefusalGuard() {}  // NOLINT(modernize-use-equals-default): or it would count as unused
};

#endif

}  // namespace

int MeasureFormatted(const CodeUnit* format, std::va_list arguments) {
  const RefusalGuard guard;
  return _vscwprintf_p(format, arguments);
}

int FormatInto(CodeUnit* buffer, std::size_t capacity, const CodeUnit* format,
               std::va_list arguments) {
  const RefusalGuard guard;
  return _vswprintf_p(buffer, capacity, format, arguments);
}

}  // namespace vemora::utils
