# What `cmake --install` gives a host and `cpack` puts into a zip.

include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
include(cmake/PackageHost.cmake)

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
if(TARGET vemora-prefs)
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
install(FILES CHANGELOG.md LICENSE README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR})

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
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/package)
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
