# What `cmake --install` gives a host and `cpack` puts into a zip.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
include(cmake/PackageHost.cmake)

set(COMMONPREFERENCES_SITE "" CACHE PATH
  "The pages as ./dev docs makes them, with the tag file for Doxygen: they are installed, too")

# Symbols are a component of their own, all else is this one.
set(CMAKE_INSTALL_DEFAULT_COMPONENT_NAME product)
function(install_symbols)
  foreach(target IN LISTS ARGN)
    install(FILES $<TARGET_GENEX_EVAL:${target},$<TARGET_PROPERTY:${target},SYMBOLS_FILE>>
      DESTINATION ${CMAKE_INSTALL_BINDIR}
      CONFIGURATIONS Release
      COMPONENT symbols EXCLUDE_FROM_ALL)
  endforeach()
endfunction()

set(headers_folder ${CMAKE_INSTALL_INCLUDEDIR}/vemora)
set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/CommonPreferences)

# Those that a host may include, and those that they need.
target_sources(CommonPreferencesValues PUBLIC
  FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES
    prefs/ShareLevel.h
    utils/Dictionary.h
    utils/Variant.h
    utils/vemora_ustring.h)
target_sources(CommonPreferences PUBLIC
  FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES
    prefs/IPreferences.h
    prefs/JsonCommon.h
    prefs/LoadResult.h
    prefs/PreferenceVisitor.h
    prefs/Preferences.h
    prefs/PreferencesBase.h
    prefs/PreferencesDefaults.h
    prefs/PreferencesRegistry.h
    prefs/SaveMode.h
    prefs/Version.h
    prefs/store/LevelMap.h
    prefs/testing/IPreferencesContract.h
    utils/Export.h
    utils/Registry.h
    utils/Singleton.h)

# All that is installed, without tests and examples.
add_custom_target(product DEPENDS CommonPreferences CommonPreferencesValues)
if(TARGET vemora-prefs)
  add_dependencies(product vemora-prefs)
endif()

set_target_properties(CommonPreferencesValues PROPERTIES EXPORT_NAME Values)
install(TARGETS CommonPreferences CommonPreferencesValues
  EXPORT CommonPreferences
  FILE_SET HEADERS DESTINATION ${headers_folder})
install_symbols(CommonPreferences)
if(TARGET vemora-prefs)
  install_symbols(vemora-prefs)
  install(TARGETS vemora-prefs CONFIGURATIONS Release RelWithDebInfo MinSizeRel)
  if(NOT CMAKE_CONFIGURATION_TYPES)
    install(TARGETS vemora-prefs CONFIGURATIONS Debug)
  endif()
endif()

install(EXPORT CommonPreferences
  FILE CommonPreferencesTargets.cmake
  NAMESPACE CommonPreferences::
  DESTINATION ${package_folder})
configure_file(cmake/CommonPreferencesConfig.cmake.in CommonPreferencesConfig.cmake @ONLY)
write_basic_package_version_file(CommonPreferencesConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES
    ${CMAKE_CURRENT_BINARY_DIR}/CommonPreferencesConfig.cmake
    ${CMAKE_CURRENT_BINARY_DIR}/CommonPreferencesConfigVersion.cmake
  DESTINATION ${package_folder})

# The file finds its folders from where it lies, so that the tree can be moved.
set(pc_folder ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX
  BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}/${pc_folder} OUTPUT_VARIABLE prefix_from_pc)
set(pc_includedir "\${prefix}/${headers_folder}")
set(pc_libdir "\${prefix}/${CMAKE_INSTALL_LIBDIR}")
# A build of both configurations has one pkg-config file, for that without a postfix.
set(pc_postfix "")
if(CMAKE_BUILD_TYPE STREQUAL "Debug")
  set(pc_postfix ${debug_postfix})
endif()
if(MINGW)
  # By its file's name: a host linked with -static would look for a static library only.
  set(pc_library -l:libCommonPreferences${pc_postfix}.dll.a)
else()
  set(pc_library -lCommonPreferences${pc_postfix})
endif()
configure_file(cmake/CommonPreferences.pc.in CommonPreferences.pc @ONLY)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/CommonPreferences.pc DESTINATION ${pc_folder})

# The licences of what is linked in.
set(licenses licenses/RapidJSON.txt)
if(MINGW)
  list(APPEND licenses licenses/GCC.txt licenses/MinGW-w64.txt)
endif()
if(TARGET vemora-prefs)
  list(APPEND licenses licenses/CLI11.txt)
endif()
install(FILES ${licenses} DESTINATION ${CMAKE_INSTALL_DOCDIR}/licenses)

# What is in the DLL, as a list for programs.
set(spdx_file ${CMAKE_CURRENT_BINARY_DIR}/spdx/$<CONFIG>/CommonPreferences.spdx.json)
add_custom_command(OUTPUT ${spdx_file}
  COMMAND ${CMAKE_COMMAND}
    -DLIBRARY=$<TARGET_FILE:CommonPreferences>
    -DOUTPUT=${spdx_file}
    -DVERSION=${PROJECT_VERSION}
    -DRAPIDJSON=${RapidJSON_INCLUDE_DIR}/rapidjson/rapidjson.h
    "$<$<BOOL:${MINGW}>:-DGCC_VERSION=${CMAKE_CXX_COMPILER_VERSION}>"
    "$<$<BOOL:${MINGW}>:-DPREPROCESSOR=${CMAKE_CXX_COMPILER}>"
    -P ${PROJECT_SOURCE_DIR}/cmake/WriteSpdx.cmake
  DEPENDS CommonPreferences cmake/WriteSpdx.cmake
  VERBATIM)
add_custom_target(spdx ALL DEPENDS ${spdx_file})
add_dependencies(product spdx)
install(FILES ${spdx_file} DESTINATION ${CMAKE_INSTALL_DOCDIR} CONFIGURATIONS Release)

configure_file(packaging/zip/README.md.in README.md @ONLY)
install(FILES CHANGELOG.md LICENSE ${CMAKE_CURRENT_BINARY_DIR}/README.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(FILES debug/vemora.natvis debug/vemora_gdb.py
  DESTINATION ${CMAKE_INSTALL_DATADIR}/CommonPreferences/debug)
if(COMMONPREFERENCES_SITE)
  install(DIRECTORY ${COMMONPREFERENCES_SITE}/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/html)
endif()

if(CMAKE_CONFIGURATION_TYPES)
  list(JOIN CMAKE_CONFIGURATION_TYPES "-" package_configuration)
else()
  set(package_configuration ${CMAKE_BUILD_TYPE})
endif()
string(TOLOWER ${package_compiler}-${package_runtime}-${package_configuration} package_suffix)
set(package_name ${PROJECT_NAME}-${PROJECT_VERSION}-win64-${package_suffix})
set(CPACK_GENERATOR ZIP)
set(CPACK_PACKAGE_VENDOR "The CommonPreferences developers")
set(CPACK_PACKAGE_FILE_NAME ${package_name})
# Two zips, which unpack into one folder.
set(CPACK_ARCHIVE_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_ALL product symbols)
set(CPACK_COMPONENTS_GROUPING IGNORE)
set(CPACK_COMPONENT_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_ARCHIVE_PRODUCT_FILE_NAME ${package_name})
set(CPACK_ARCHIVE_SYMBOLS_FILE_NAME ${package_name}-symbols)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
