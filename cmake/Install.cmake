# SPDX-License-Identifier: Apache-2.0
# Headers, libraries, the distlog command, and what find_package and pkg-config need to find them.
# Nothing that is installed refers to the engine: its users need neither its headers nor its package.

include(CMakePackageConfigHelpers)

# Libraries lie beside each other, programs beside the library folder: found from wherever the
# installation is moved to.
file(RELATIVE_PATH lib_from_bin "/${CMAKE_INSTALL_BINDIR}" "/${CMAKE_INSTALL_LIBDIR}")
set_target_properties(kolt vur_dl PROPERTIES INSTALL_RPATH "$ORIGIN")
if(TARGET distlog)
  set_target_properties(distlog PROPERTIES INSTALL_RPATH "$ORIGIN/${lib_from_bin}")
  install(TARGETS distlog RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
endif()

set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/vur_dl")
foreach(library IN ITEMS kolt vur_dl)
  install(
    TARGETS ${library}
    EXPORT ${library}_targets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}")
  install(
    EXPORT ${library}_targets
    FILE ${library}Targets.cmake
    NAMESPACE ${library}::
    DESTINATION "${package_dir}")
endforeach()

install(
  DIRECTORY "${PROJECT_SOURCE_DIR}/include/" "${PROJECT_SOURCE_DIR}/kolt/include/"
  DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}"
  FILES_MATCHING
  PATTERN "*.h")

set(share_dir "${CMAKE_INSTALL_DATADIR}/vur_dl")
file(GLOB shared_files CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/idl/*.idl"
     "${PROJECT_SOURCE_DIR}/xml/*.xsd")
install(FILES ${shared_files} DESTINATION "${share_dir}")

# The example lies beside the schema that it names.
file(READ "${PROJECT_SOURCE_DIR}/examples/distlog.xml" example)
string(REPLACE "../xml/distlog.xsd" "distlog.xsd" example "${example}")
file(CONFIGURE OUTPUT "${PROJECT_BINARY_DIR}/share/distlog.xml" CONTENT "${example}" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/share/distlog.xml" DESTINATION "${share_dir}")
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
                                       "${PROJECT_SOURCE_DIR}/examples/distlog.xml")

configure_package_config_file(
  "${PROJECT_SOURCE_DIR}/cmake/vur_dlConfig.cmake.in" "${PROJECT_BINARY_DIR}/vur_dlConfig.cmake"
  INSTALL_DESTINATION "${package_dir}"
  NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/vur_dlConfigVersion.cmake"
                                 COMPATIBILITY SameMinorVersion)
install(FILES "${PROJECT_BINARY_DIR}/vur_dlConfig.cmake"
              "${PROJECT_BINARY_DIR}/vur_dlConfigVersion.cmake" DESTINATION "${package_dir}")

# The .pc files find their prefix from where they lie.
set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH VUR_DL_PREFIX_FROM_PC "/${pkgconfig_dir}" "/")
string(REGEX REPLACE "/$" "" VUR_DL_PREFIX_FROM_PC "${VUR_DL_PREFIX_FROM_PC}")
foreach(package IN ITEMS kolt vur_dl)
  configure_file("${PROJECT_SOURCE_DIR}/cmake/${package}.pc.in"
                 "${PROJECT_BINARY_DIR}/${package}.pc" @ONLY)
  install(FILES "${PROJECT_BINARY_DIR}/${package}.pc" DESTINATION "${pkgconfig_dir}")
endforeach()
