# SPDX-License-Identifier: Apache-2.0
# libkolt, the DDS platform, and libvur_dl, the logger on top of it. Every source below the two
# folders belongs to its library; a new file is picked up by the next build.

# vur_dl_add_library(<name> <source folder> <public include folder> <macro set while building>)
function(vur_dl_add_library name source_dir include_dir building)
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${source_dir}/*.cpp" "${source_dir}/*.c")

  add_library(${name} SHARED ${sources})
  target_include_directories(
    ${name}
    PUBLIC "$<BUILD_INTERFACE:${include_dir}>" "$<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>"
    PRIVATE "${source_dir}")
  target_compile_definitions(${name} PRIVATE ${building})

  # Only what the export macro marks leaves the library. The version script also holds back what
  # the C++ library's own headers instantiate with default visibility.
  set(version_script "${PROJECT_SOURCE_DIR}/cmake/${name}.map")
  set_target_properties(
    ${name}
    PROPERTIES C_VISIBILITY_PRESET hidden
               CXX_VISIBILITY_PRESET hidden
               VISIBILITY_INLINES_HIDDEN ON
               VERSION ${PROJECT_VERSION}
               SOVERSION 0
               LINK_DEPENDS "${version_script}")

  # No -Bsymbolic and no -fno-semantic-interposition: a program that defines one of the platform's
  # functions itself gets the calls that libvur_dl makes, and the fault tests live on that.
  target_link_options(${name} PRIVATE "-Wl,--version-script=${version_script}" -Wl,--as-needed)
  # A program may unload a library whose threads run: its code stays.
  target_link_options(${name} PRIVATE -Wl,-z,nodelete)
  if(NOT VUR_DL_SANITIZE)
    target_link_options(${name} PRIVATE -Wl,-z,defs)
  endif()
endfunction()

# What the C++ of the libraries, the command and the tests shares. Not installed.
add_library(kolt_internal INTERFACE)
target_include_directories(kolt_internal INTERFACE "${PROJECT_SOURCE_DIR}/kolt/internal")

vur_dl_add_library(kolt "${PROJECT_SOURCE_DIR}/kolt/src" "${PROJECT_SOURCE_DIR}/kolt/include"
                   KOLT_BUILDING)
target_link_libraries(
  kolt PRIVATE $<BUILD_INTERFACE:vur_dl_warnings> $<BUILD_INTERFACE:kolt_internal> CycloneDDS::ddsc
               EXPAT::EXPAT Threads::Threads utf8cpp "${LIBMD_LIBRARY}")
target_include_directories(kolt SYSTEM PRIVATE "${LIBMD_INCLUDE_DIR}")
# The engine's headers for C want the GNU dialect.
set_target_properties(kolt PROPERTIES C_EXTENSIONS ON)
add_library(kolt::kolt ALIAS kolt)

vur_dl_add_library(vur_dl "${PROJECT_SOURCE_DIR}/srcC" "${PROJECT_SOURCE_DIR}/include"
                   VUR_DL_BUILDING)
target_link_libraries(
  vur_dl
  PUBLIC kolt
  PRIVATE $<BUILD_INTERFACE:vur_dl_warnings> $<BUILD_INTERFACE:kolt_internal>)
add_library(vur_dl::vur_dl ALIAS vur_dl)
