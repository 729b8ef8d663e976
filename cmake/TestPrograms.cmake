# Test programs: a few programs hold all files of tests, and ctest has an entry for each suite, so
# that a suite finds a fresh process and runs beside others. An entry is called FILE.SUITE.
include(${CMAKE_CURRENT_LIST_DIR}/TestSources.cmake)

# add_test_program(NAME
#   [TESTS FILE_test.cpp...]   what it holds; each file is also a target, which builds its program
#   [STRESS FILE_test.cpp...]  the same, with the label `stress`
#   [OBJECTS NAME]             tests that are built already, by add_test_objects
#   [PREFIX TEXT]              of the entries of those, where two programs run them
#   [SOURCES FILE...]          other sources
#   [LIBRARIES TARGET...]      what it tests, if not the library's objects
#   [PORTABLE]                 nothing in it calls Windows: see COMMONPREFERENCES_PORTABLE_TESTS
#   [WINDOWS_UNITS])           what calls Windows, without the DLL: COMMONPREFERENCES_WINDOWS_UNIT_TESTS
function(add_test_program name)
  cmake_parse_arguments(PARSE_ARGV 1 arg
    "PORTABLE;WINDOWS_UNITS" "OBJECTS;PREFIX" "TESTS;STRESS;SOURCES;LIBRARIES")
  register_test_source(${arg_TESTS} ${arg_STRESS})
  if((arg_PORTABLE AND NOT COMMONPREFERENCES_PORTABLE_TESTS) OR
     (arg_WINDOWS_UNITS AND NOT COMMONPREFERENCES_WINDOWS_UNIT_TESTS))
    return()
  endif()
  if(NOT arg_LIBRARIES)
    set(arg_LIBRARIES CommonPreferencesObjects)
  endif()
  add_executable(${name} ${arg_TESTS} ${arg_STRESS} ${arg_SOURCES})
  target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} test_support)
  target_precompile_headers(${name} REUSE_FROM test_precompiled)
  if(arg_OBJECTS)
    target_sources(${name} PRIVATE $<TARGET_OBJECTS:${arg_OBJECTS}>)
    get_target_property(built_tests ${arg_OBJECTS} TEST_FILES)
  endif()

  add_suites(${name} "" "" ${arg_TESTS})
  add_suites(${name} "" stress ${arg_STRESS})
  add_suites(${name} "${arg_PREFIX}" "" ${built_tests})
  add_test_of_entries(${name})
  if(NOT arg_PREFIX)
    list(APPEND arg_TESTS ${built_tests})
  endif()
  foreach(source IN LISTS arg_TESTS arg_STRESS)
    get_filename_component(file ${source} NAME_WE)
    add_custom_target(${file} DEPENDS ${name})
  endforeach()
endfunction()

# add_test_objects(NAME LIBRARY FILE_test.cpp...): tests that several programs hold, built once.
function(add_test_objects name library)
  register_test_source(${ARGN})
  add_library(${name} OBJECT ${ARGN})
  target_link_libraries(${name} PRIVATE ${library} test_support)
  target_precompile_headers(${name} REUSE_FROM test_precompiled)
  set_target_properties(${name} PROPERTIES TEST_FILES "${ARGN}")
endfunction()

# Suites of one name use the same files and registry keys, so two programs never run them at once.
function(add_suites program prefix labels)
  foreach(source IN LISTS ARGN)
    get_filename_component(file ${source} NAME_WE)
    list_suites(${CMAKE_CURRENT_SOURCE_DIR}/${source} suites)
    foreach(suite IN LISTS suites)
      require_new_suite(${program} ${suite} ${source})
      # Its cases are plain ones, or those of parameters or types.
      set(filter "${suite}.*:${suite}/*:*/${suite}.*:*/${suite}/*")
      set_property(TARGET ${program} APPEND PROPERTY SUITE_FILTERS ${filter})
      set(entry ${prefix}${file}.${suite})
      add_test(NAME ${entry} COMMAND ${program} --gtest_filter=${filter})
      set_tests_properties(${entry} PROPERTIES
        FAIL_REGULAR_EXPRESSION "0 tests from 0 test suites ran"
        RESOURCE_LOCK ${suite}
        LABELS "${labels}")
    endforeach()
  endforeach()
endfunction()

# GoogleTest would take two suites of one name for one.
function(require_new_suite program suite source)
  get_target_property(known ${program} SUITES)
  if(suite IN_LIST known)
    message(FATAL_ERROR "Another file of ${program} has a suite ${suite}, too: ${source}")
  endif()
  set_property(TARGET ${program} APPEND PROPERTY SUITES ${suite})
endfunction()

# The suites of a file go by its text: to start each program and ask would take longer.
function(list_suites source result)
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${source})
  file(READ ${source} text)
  if(text MATCHES "\nINSTANTIATE_PREFERENCES_CONTRACT\\(")
    file(READ ${PROJECT_SOURCE_DIR}/prefs/testing/IPreferencesContract.h contract)
    string(APPEND text "${contract}")
  endif()
  string(REGEX MATCHALL "\n(TEST|TEST_F|TEST_P|TYPED_TEST|TYPED_TEST_P)\\([ \n]*[A-Za-z0-9_]+"
    suites "${text}")
  list(TRANSFORM suites REPLACE "^.*[( \n]" "")
  list(REMOVE_DUPLICATES suites)
  set(${result} ${suites} PARENT_SCOPE)
endfunction()

# Nothing is in the program that no entry runs.
function(add_test_of_entries program)
  get_target_property(filters ${program} SUITE_FILTERS)
  list(JOIN filters ":" filters)
  set(entry ${program}.every_suite_has_an_entry)
  add_test(NAME ${entry} COMMAND ${program} --gtest_filter=-${filters})
  set_tests_properties(${entry} PROPERTIES
    PASS_REGULAR_EXPRESSION "0 tests from 0 test suites ran")
endfunction()
