# add_version_resource(TARGET FILE_TYPE EXTENSION DESCRIPTION): what Windows shows of a DLL
# (VFT_DLL) or a program (VFT_APP). Compiled apart: options of a C++ compiler are none of a resource
# compiler's.
function(add_version_resource target file_type extension description)
  get_target_property(postfix ${target} DEBUG_POSTFIX)
  if(NOT postfix)
    set(postfix "")
  endif()
  set(file_name ${target}${extension})
  set(debug_file_name ${target}${postfix}${extension})
  configure_file(${PROJECT_SOURCE_DIR}/cmake/Version.rc.in ${target}.rc @ONLY)
  add_library(${target}Version OBJECT ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  target_compile_definitions(${target}Version PRIVATE $<$<CONFIG:Debug>:DEBUG_BUILD>)
  target_sources(${target} PRIVATE $<TARGET_OBJECTS:${target}Version>)
endfunction()
