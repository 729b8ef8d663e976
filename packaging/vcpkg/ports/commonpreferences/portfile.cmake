vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY)

# The clone that this port lies in.
get_filename_component(SOURCE_PATH "${CURRENT_PORT_DIR}/../../../.." ABSOLUTE)

vcpkg_check_features(OUT_FEATURE_OPTIONS FEATURE_OPTIONS
    FEATURES
        tools COMMONPREFERENCES_APPS
)

vcpkg_cmake_configure(
    SOURCE_PATH "${SOURCE_PATH}"
    OPTIONS
        -DCMAKE_INSTALL_DOCDIR=share/${PORT}/doc
        -DCOMMONPREFERENCES_EXAMPLES=OFF
        -DCOMMONPREFERENCES_TESTS=OFF
    OPTIONS_RELEASE
        ${FEATURE_OPTIONS}
    OPTIONS_DEBUG
        -DCOMMONPREFERENCES_APPS=OFF
)
vcpkg_cmake_install()
vcpkg_copy_pdbs()
vcpkg_cmake_config_fixup(PACKAGE_NAME CommonPreferences CONFIG_PATH lib/cmake/CommonPreferences)
vcpkg_fixup_pkgconfig()
if("tools" IN_LIST FEATURES)
    vcpkg_copy_tools(TOOL_NAMES vemora-prefs AUTO_CLEAN)
endif()

file(GLOB licenses "${CURRENT_PACKAGES_DIR}/share/${PORT}/doc/licenses/*.txt")
vcpkg_install_copyright(FILE_LIST "${SOURCE_PATH}/LICENSE" ${licenses})
file(INSTALL "${CURRENT_PORT_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")

file(REMOVE_RECURSE
    "${CURRENT_PACKAGES_DIR}/debug/include"
    "${CURRENT_PACKAGES_DIR}/debug/share"
    "${CURRENT_PACKAGES_DIR}/share/${PORT}/doc"
)
