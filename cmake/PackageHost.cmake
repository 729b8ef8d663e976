# Which hosts the binaries are for: those of one compiler, C++ library and C runtime. Sets
#   package_compiler, package_runtime   as the zip's name has them
#   package_host                        the same for people
#   other_runtime                       what the preprocessor knows of a runtime that does not fit
include(CheckCXXSourceCompiles)

if(MSVC)
  set(package_compiler vc${MSVC_TOOLSET_VERSION})
  set(package_runtime md)
  set(package_host
    "Visual C++ from toolset v${MSVC_TOOLSET_VERSION} on, with the runtime as a DLL (/MD or /MDd)")
else()
  string(REGEX MATCH "^[0-9]+" compiler_version ${CMAKE_CXX_COMPILER_VERSION})
  set(package_compiler gcc${compiler_version})
  check_cxx_source_compiles("
    #include <string>
    #ifndef _UCRT
    #error
    #endif
    int main() {}" COMMONPREFERENCES_ON_UCRT)
  if(COMMONPREFERENCES_ON_UCRT)
    set(package_runtime ucrt)
    set(other_runtime "!defined(_UCRT)")
  else()
    set(package_runtime msvcrt)
    set(other_runtime "defined(_UCRT)")
  endif()
  set(package_host
    "MinGW-w64 with libstdc++ of GCC ${compiler_version} or newer and ${package_runtime}.dll")
endif()
