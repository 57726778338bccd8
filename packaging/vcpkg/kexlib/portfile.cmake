# Builds the source tree that this port lies in: vcpkg install kexlib --overlay-ports=packaging/vcpkg
vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY ONLY_DYNAMIC_CRT)
cmake_path(SET source_folder NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../../..")
vcpkg_cmake_configure(
  SOURCE_PATH "${source_folder}"
  OPTIONS -DKEXLIB_BUILD_TESTS=OFF -DKEXLIB_BUILD_BENCHMARKS=OFF -DKEXLIB_BUILD_EXAMPLES=OFF -DKEXLIB_VIEWER=OFF
          -DKEXLIB_COVERAGE=OFF -DKEXLIB_HARDENED=OFF -DKEXLIB_INSTALL=ON -DKEXLIB_WARNINGS_AS_ERRORS=OFF)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(CONFIG_PATH lib/cmake/kexlib)
vcpkg_copy_pdbs()
# The guide and the examples are in the package of the project itself; vcpkg wants one configuration's files only.
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include" "${CURRENT_PACKAGES_DIR}/debug/share"
     "${CURRENT_PACKAGES_DIR}/share/doc" "${CURRENT_PACKAGES_DIR}/share/kexlib/examples")
vcpkg_install_copyright(FILE_LIST "${source_folder}/LICENSE" "${source_folder}/NOTICE.md")
