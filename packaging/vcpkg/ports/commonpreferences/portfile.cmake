vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY)

# The clone that this port lies in.
get_filename_component(SOURCE_PATH "${CURRENT_PORT_DIR}/../../../.." ABSOLUTE)

vcpkg_cmake_configure(
    SOURCE_PATH "${SOURCE_PATH}"
    OPTIONS
        -DCOMMONPREFERENCES_EXAMPLES=OFF
        -DCOMMONPREFERENCES_TESTS=OFF
)
vcpkg_cmake_install()
vcpkg_copy_pdbs()
vcpkg_cmake_config_fixup(PACKAGE_NAME CommonPreferences CONFIG_PATH lib/cmake/CommonPreferences)
vcpkg_fixup_pkgconfig()

file(REMOVE_RECURSE
    "${CURRENT_PACKAGES_DIR}/debug/include"
    "${CURRENT_PACKAGES_DIR}/debug/share"
    "${CURRENT_PACKAGES_DIR}/share/doc"
)

set(licenses "${SOURCE_PATH}/LICENSE" "${SOURCE_PATH}/licenses/RapidJSON.txt")
if(VCPKG_TARGET_IS_MINGW)
    list(APPEND licenses
        "${SOURCE_PATH}/licenses/GCC.txt"
        "${SOURCE_PATH}/licenses/MinGW-w64.txt"
    )
endif()
vcpkg_install_copyright(FILE_LIST ${licenses})
file(INSTALL "${CURRENT_PORT_DIR}/usage" DESTINATION "${CURRENT_PACKAGES_DIR}/share/${PORT}")
