# Builds the source tree that this port lies in: vcpkg install kexlib --overlay-ports=packaging/vcpkg
vcpkg_check_linkage(ONLY_DYNAMIC_LIBRARY ONLY_DYNAMIC_CRT)
cmake_path(SET source_folder NORMALIZE "${CMAKE_CURRENT_LIST_DIR}/../../..")
vcpkg_cmake_configure(
  SOURCE_PATH "${source_folder}"
  OPTIONS -DKEXLIB_BUILD_TESTS=OFF -DKEXLIB_BUILD_BENCHMARKS=OFF -DKEXLIB_BUILD_EXAMPLES=OFF -DKEXLIB_VIEWER=OFF
          -DKEXLIB_INSTALL=ON)
vcpkg_cmake_install()
vcpkg_cmake_config_fixup(CONFIG_PATH lib/cmake/kexlib)
vcpkg_copy_pdbs()
file(REMOVE_RECURSE "${CURRENT_PACKAGES_DIR}/debug/include")
set(VCPKG_POLICY_SKIP_COPYRIGHT_CHECK enabled)
