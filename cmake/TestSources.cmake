# What is written as a test is run as one: the functions that add entries of ctest register their
# sources here, and none that is found in the tree may lack.

function(register_test_source)
  foreach(source IN LISTS ARGN)
    set_property(GLOBAL APPEND PROPERTY test_sources ${CMAKE_CURRENT_SOURCE_DIR}/${source})
  endforeach()
endfunction()

function(require_registered_sources)
  get_property(registered GLOBAL PROPERTY test_sources)
  list(REMOVE_ITEM ARGN ${registered})
  if(ARGN)
    message(FATAL_ERROR "Nothing builds and runs: ${ARGN}")
  endif()
endfunction()
