# RapidJSON is headers only. A distribution keeps them in /usr/include, which a cross compiler must
# not see as a whole, so the headers alone are linked into a folder of the build.

find_path(RAPIDJSON_INCLUDE_DIR rapidjson/document.h
  PATHS /usr/include /usr/local/include
  NO_CMAKE_FIND_ROOT_PATH)
if(NOT RAPIDJSON_INCLUDE_DIR)
  message(FATAL_ERROR "RapidJSON is missing. On Debian: apt-get install rapidjson-dev")
endif()

set(rapidjson_folder ${CMAKE_CURRENT_BINARY_DIR}/third_party)
file(MAKE_DIRECTORY ${rapidjson_folder})
file(CREATE_LINK ${RAPIDJSON_INCLUDE_DIR}/rapidjson ${rapidjson_folder}/rapidjson
  COPY_ON_ERROR SYMBOLIC)

add_library(CommonPreferencesRapidJSON INTERFACE)
target_include_directories(CommonPreferencesRapidJSON SYSTEM INTERFACE ${rapidjson_folder})
