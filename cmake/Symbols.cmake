# Symbols of a Release build: who has a crash dump needs them, and nobody else. They are made with
# every build, so that those of what was shipped are there.

# Function names and line numbers, not variables: the first cost nothing to compile, the others 18%.
function(compile_with_symbols)
  foreach(target IN LISTS ARGN)
    if(MSVC)
      set_target_properties(${target} PROPERTIES
        MSVC_DEBUG_INFORMATION_FORMAT $<$<CONFIG:Debug,Release,RelWithDebInfo>:Embedded>)
    elseif(MINGW)
      target_compile_options(${target} PRIVATE $<$<CONFIG:Release>:-g1>)
    endif()
  endforeach()
endfunction()

# separate_symbols(TARGET): of a DLL or a program, FILE.debug or a PDB file beside it has them. The
# property SYMBOLS_FILE names it.
function(separate_symbols target)
  if(MSVC)
    target_link_options(${target} PRIVATE $<$<CONFIG:Release>:/DEBUG /OPT:REF /OPT:ICF>)
    set_target_properties(${target} PROPERTIES SYMBOLS_FILE $<TARGET_PDB_FILE:${target}>)
  elseif(MINGW)
    set(file $<TARGET_FILE:${target}>)
    # It would write the time into the file.
    set(objcopy ${CMAKE_COMMAND} -E env SOURCE_DATE_EPOCH=0 ${CMAKE_OBJCOPY})
    set(release $<$<CONFIG:Release>)
    add_custom_command(TARGET ${target} POST_BUILD
      COMMAND "${release}:${objcopy};--only-keep-debug;${file};${file}.debug>"
      COMMAND "${release}:${objcopy};--strip-all;--add-gnu-debuglink=${file}.debug;${file}>"
      COMMAND_EXPAND_LISTS
      VERBATIM)
    set_target_properties(${target} PROPERTIES SYMBOLS_FILE ${file}.debug)
  endif()
endfunction()
