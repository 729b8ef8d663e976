# How the project's own code is compiled and linked: warnings, checks and the static runtime.
# Nothing of this reaches a host.

set(COMMONPREFERENCES_SANITIZE "" CACHE STRING
  "Empty, 'full' (address and undefined behaviour), 'fuzz' (the same for libFuzzer), 'thread' (data races) or 'trap' (undefined behaviour stops the program)")

add_library(CommonPreferencesOptions INTERFACE)

if(MSVC)
  target_compile_options(CommonPreferencesOptions INTERFACE /W4 /permissive- /utf-8)
  # Standard functions such as mbstowcs, for which it would have its own.
  target_compile_definitions(CommonPreferencesOptions INTERFACE _CRT_SECURE_NO_WARNINGS)
else()
  target_compile_options(CommonPreferencesOptions INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
endif()

if(WIN32)
  target_compile_definitions(CommonPreferencesOptions INTERFACE NOMINMAX WIN32_LEAN_AND_MEAN)
endif()

if(MINGW)
  # The compiler's runtime is linked in, so that the DLL needs system DLLs only.
  target_link_options(CommonPreferencesOptions INTERFACE -static)
endif()

# Two builds of the same sources give the same bytes, whenever and wherever they are made.
if(MSVC)
  target_compile_options(CommonPreferencesOptions INTERFACE /Brepro)
  target_link_options(CommonPreferencesOptions INTERFACE /Brepro)
elseif(MINGW)
  target_link_options(CommonPreferencesOptions INTERFACE LINKER:--no-insert-timestamp)
endif()

# use_relative_paths(TARGET...): what GCC makes names no folder of this machine, unless it is a Debug
# build, whose debugger is to find the sources.
function(use_relative_paths)
  # As a cache of compilations may name the sources.
  cmake_path(RELATIVE_PATH PROJECT_SOURCE_DIR BASE_DIRECTORY ${PROJECT_BINARY_DIR}
    OUTPUT_VARIABLE from_build)
  foreach(target IN LISTS ARGN)
    foreach(folder IN ITEMS ${from_build} ${PROJECT_SOURCE_DIR} ${PROJECT_BINARY_DIR})
      target_compile_options(${target}
        PRIVATE $<$<NOT:$<CONFIG:Debug>>:-ffile-prefix-map=${folder}=.>)
    endforeach()
  endforeach()
endfunction()

# The checks of the standard library, where it is GCC's.
target_compile_definitions(CommonPreferencesOptions INTERFACE
  $<$<AND:$<CONFIG:Debug>,$<NOT:$<BOOL:${MSVC}>>>:_GLIBCXX_ASSERTIONS>)

if(COMMONPREFERENCES_SANITIZE MATCHES "^(full|fuzz)$")
  set(sanitizer_flags -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_compile_options(CommonPreferencesOptions INTERFACE ${sanitizer_flags} -O1)
  target_link_options(CommonPreferencesOptions INTERFACE ${sanitizer_flags})
  if(COMMONPREFERENCES_SANITIZE STREQUAL "fuzz")
    target_compile_options(CommonPreferencesOptions INTERFACE
      -fsanitize=fuzzer-no-link
      -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/fuzz/sanitizer-ignore.txt)
  endif()
elseif(COMMONPREFERENCES_SANITIZE STREQUAL "thread")
  # GCC warns of each fence, for this sanitizer knows none: at worst it reports what is no race.
  target_compile_options(CommonPreferencesOptions INTERFACE
    -fsanitize=thread -O1 $<$<CXX_COMPILER_ID:GNU>:-Wno-tsan>)
  target_link_options(CommonPreferencesOptions INTERFACE -fsanitize=thread)
elseif(COMMONPREFERENCES_SANITIZE STREQUAL "trap")
  target_compile_options(CommonPreferencesOptions INTERFACE
    -fsanitize=undefined -fsanitize-undefined-trap-on-error)
endif()

option(COMMONPREFERENCES_COVERAGE "Count which lines and branches the tests reach" OFF)
if(COMMONPREFERENCES_COVERAGE)
  target_compile_options(CommonPreferencesOptions INTERFACE --coverage -O0)
  target_link_options(CommonPreferencesOptions INTERFACE --coverage)
endif()
