# Libraries of headers only. Debian keeps them in /usr/include, which a cross compiler must not see as
# a whole, so the headers alone are linked into a folder of the build. On Windows the folder is taken
# as it is: symbolic links need rights there that few users have.

# add_header_library(NAME FOLDER HEADER PACKAGE) makes the target CommonPreferencesNAME;
# FOLDER/HEADER lies in Debian's PACKAGE.
function(add_header_library name folder header package)
  find_path(${name}_INCLUDE_DIR ${folder}/${header}
    PATHS /usr/include /usr/local/include
    NO_CMAKE_FIND_ROOT_PATH)
  if(NOT ${name}_INCLUDE_DIR)
    message(FATAL_ERROR "${name} is missing. On Debian: apt-get install ${package}")
  endif()
  set(headers_folder ${${name}_INCLUDE_DIR})
  if(CMAKE_CROSSCOMPILING AND CMAKE_HOST_UNIX)
    set(headers_folder ${PROJECT_BINARY_DIR}/third_party)
    file(MAKE_DIRECTORY ${headers_folder})
    file(CREATE_LINK ${${name}_INCLUDE_DIR}/${folder} ${headers_folder}/${folder} SYMBOLIC)
  endif()
  add_library(CommonPreferences${name} INTERFACE)
  target_include_directories(CommonPreferences${name} SYSTEM INTERFACE ${headers_folder})
endfunction()
