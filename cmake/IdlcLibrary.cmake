# SPDX-License-Identifier: Apache-2.0
# The wire types as idlc compiles them, for what is held against code that shares nothing with ours:
# the interoperability tests and the codec's benchmark.

# A static library of everything that idlc makes of tests/interop/*.idl: plain C, without our warnings.
# (idlc compiles no mutable unions, hence not idl/distlog.idl itself.) Both the tests and the
# benchmarks ask for it; the first call makes it.
function(add_idlc_library name)
  if(TARGET ${name})
    return()
  endif()
  find_program(IDLC idlc REQUIRED)
  file(GLOB idl_files CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/tests/interop/*.idl")
  set(idl_dir "${PROJECT_BINARY_DIR}/idl")
  file(MAKE_DIRECTORY "${idl_dir}")
  set(idl_sources "")
  foreach(idl_file IN LISTS idl_files)
    get_filename_component(stem "${idl_file}" NAME_WE)
    add_custom_command(
      OUTPUT "${idl_dir}/${stem}.c" "${idl_dir}/${stem}.h"
      COMMAND "${IDLC}" -f case-sensitive -o "${idl_dir}" -I "${PROJECT_SOURCE_DIR}/idl" "${idl_file}"
      DEPENDS ${idl_files}
      VERBATIM)
    list(APPEND idl_sources "${idl_dir}/${stem}.c")
  endforeach()
  add_library(${name} STATIC ${idl_sources})
  target_include_directories(${name} SYSTEM PUBLIC "${idl_dir}")
  target_link_libraries(${name} PUBLIC CycloneDDS::ddsc)
endfunction()
