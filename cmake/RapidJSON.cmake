include(${CMAKE_CURRENT_LIST_DIR}/HeaderLibrary.cmake)
add_header_library(RapidJSON rapidjson document.h rapidjson-dev)
