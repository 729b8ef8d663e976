# As much of vcpkg as the port of this project uses, to run it where vcpkg cannot be had.
# cmake -D PORT_FOLDER=... -D BUILD=... -D INSTALLED=... -D TOOLCHAIN=... -D BUILD_TYPE=...
#       -D FEATURES=... -P vcpkg.cmake
cmake_minimum_required(VERSION 3.25)

set(PORT commonpreferences)
set(CURRENT_PORT_DIR ${PORT_FOLDER})
set(CURRENT_PACKAGES_DIR ${BUILD}/package)
set(VCPKG_BUILD_TYPE ${BUILD_TYPE})  # empty for both
set(VCPKG_TARGET_IS_MINGW ON)
set(configurations release debug)
if(VCPKG_BUILD_TYPE)
  set(configurations ${VCPKG_BUILD_TYPE})
endif()

function(run)
  execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(vcpkg_check_linkage)
endfunction()

function(vcpkg_check_features)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "OUT_FEATURE_OPTIONS" "FEATURES")
  set(options)
  while(arg_FEATURES)
    list(POP_FRONT arg_FEATURES feature option)
    if(feature IN_LIST FEATURES)
      list(APPEND options -D${option}=ON)
    else()
      list(APPEND options -D${option}=OFF)
    endif()
  endwhile()
  set(${arg_OUT_FEATURE_OPTIONS} ${options} PARENT_SCOPE)
endfunction()

# Headers of Linux are no part of what vcpkg installed.
function(vcpkg_cmake_configure)
  cmake_parse_arguments(PARSE_ARGV 0 arg
    "" "SOURCE_PATH" "OPTIONS;OPTIONS_RELEASE;OPTIONS_DEBUG")
  set(prefix_release ${CURRENT_PACKAGES_DIR})
  set(prefix_debug ${CURRENT_PACKAGES_DIR}/debug)
  set(type_release Release)
  set(type_debug Debug)
  foreach(configuration IN LISTS configurations)
    string(TOUPPER ${configuration} upper)
    run(${CMAKE_COMMAND} -G Ninja -S ${arg_SOURCE_PATH} -B ${BUILD}/${configuration}
      --toolchain ${TOOLCHAIN}
      -DCMAKE_PREFIX_PATH=${INSTALLED}
      "-DCMAKE_IGNORE_PATH=/usr/include\;/usr/local/include"
      -DCMAKE_BUILD_TYPE=${type_${configuration}}
      -DCMAKE_INSTALL_PREFIX=${prefix_${configuration}}
      -DCMAKE_INSTALL_LIBDIR=lib -DCMAKE_INSTALL_BINDIR=bin
      ${arg_OPTIONS} ${arg_OPTIONS_${upper}})
  endforeach()
endfunction()

function(vcpkg_cmake_install)
  foreach(configuration IN LISTS configurations)
    run(${CMAKE_COMMAND} --build ${BUILD}/${configuration} --target install)
  endforeach()
endfunction()

function(vcpkg_copy_pdbs)
endfunction()

# The files of both configurations come together in share.
function(vcpkg_cmake_config_fixup)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "PACKAGE_NAME;CONFIG_PATH" "")
  set(share ${CURRENT_PACKAGES_DIR}/share/${arg_PACKAGE_NAME})
  file(COPY ${CURRENT_PACKAGES_DIR}/${arg_CONFIG_PATH}/ DESTINATION ${share})
  file(GLOB of_debug ${CURRENT_PACKAGES_DIR}/debug/${arg_CONFIG_PATH}/*-debug.cmake)
  foreach(file IN LISTS of_debug)
    get_filename_component(name ${file} NAME)
    file(READ ${file} text)
    string(REGEX REPLACE "{_IMPORT_PREFIX}/(lib|bin)" "{_IMPORT_PREFIX}/debug/\\1" text "${text}")
    file(WRITE ${share}/${name} "${text}")
  endforeach()
  # They lie one folder less deep than the build installed them.
  file(GLOB all ${share}/*.cmake)
  set(parent "get_filename_component(_IMPORT_PREFIX \"\${_IMPORT_PREFIX}\" PATH)\n")
  set(file_folder "get_filename_component(_IMPORT_PREFIX \"\${CMAKE_CURRENT_LIST_FILE}\" PATH)\n")
  foreach(file IN LISTS all)
    file(READ ${file} text)
    string(REPLACE "${file_folder}${parent}" "${file_folder}" text "${text}")
    file(WRITE ${file} "${text}")
  endforeach()
  file(REMOVE_RECURSE
    ${CURRENT_PACKAGES_DIR}/lib/cmake
    ${CURRENT_PACKAGES_DIR}/debug/lib/cmake)
endfunction()

function(vcpkg_fixup_pkgconfig)
endfunction()

# A program moves to the tools, and what it needs is copied there.
function(vcpkg_copy_tools)
  cmake_parse_arguments(PARSE_ARGV 0 arg "AUTO_CLEAN" "" "TOOL_NAMES")
  set(tools ${CURRENT_PACKAGES_DIR}/tools/${PORT})
  foreach(tool IN LISTS arg_TOOL_NAMES)
    file(COPY ${CURRENT_PACKAGES_DIR}/bin/${tool}.exe DESTINATION ${tools})
    file(REMOVE ${CURRENT_PACKAGES_DIR}/bin/${tool}.exe)
  endforeach()
  file(GLOB libraries ${CURRENT_PACKAGES_DIR}/bin/*.dll)
  file(COPY ${libraries} DESTINATION ${tools})
endfunction()

function(vcpkg_install_copyright)
  cmake_parse_arguments(PARSE_ARGV 0 arg "" "" "FILE_LIST")
  set(copyright ${CURRENT_PACKAGES_DIR}/share/${PORT}/copyright)
  foreach(file IN LISTS arg_FILE_LIST)
    file(READ ${file} text)
    file(APPEND ${copyright} "${file}\n\n${text}\n")
  endforeach()
endfunction()

include(${PORT_FOLDER}/portfile.cmake)
