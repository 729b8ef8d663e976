# GoogleTest is built from Debian's sources once for each build folder, unoptimized: it is small beside
# what runs. Elsewhere a package of it is found.

function(build_googletest source)
  foreach(config IN ITEMS "" _DEBUG _RELEASE)
    set(CMAKE_CXX_FLAGS${config} -O0)
  endforeach()
  set(CMAKE_POLICY_DEFAULT_CMP0077 NEW)
  set(gtest_force_shared_crt ON)
  set(INSTALL_GTEST OFF)
  add_subdirectory(${source} ${CMAKE_CURRENT_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
endfunction()

if(EXISTS /usr/src/googletest/CMakeLists.txt)
  build_googletest(/usr/src/googletest)
else()
  find_package(GTest REQUIRED)
endif()
