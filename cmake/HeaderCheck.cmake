# SPDX-License-Identifier: Apache-2.0
# Every public header compiles on its own, as C11 and as C++20, without a warning. One generated
# file per header and language; the objects are part of the normal build and are never linked.

set(header_check_dir "${PROJECT_BINARY_DIR}/header_check")
set(header_check_sources "")

foreach(include_dir IN ITEMS "${PROJECT_SOURCE_DIR}/include" "${PROJECT_SOURCE_DIR}/kolt/include")
  file(
    GLOB_RECURSE headers CONFIGURE_DEPENDS
    RELATIVE "${include_dir}"
    "${include_dir}/*.h")
  foreach(header IN LISTS headers)
    string(MAKE_C_IDENTIFIER "${header}" stem)
    foreach(extension IN ITEMS c cpp)
      set(source "${header_check_dir}/${stem}.${extension}")
      # Included twice: a header must bear that as well. The last line keeps the file from being
      # an empty translation unit, which C forbids.
      file(CONFIGURE OUTPUT "${source}" CONTENT
           "#include <${header}>\n#include <${header}>\nextern int header_check_${stem};\n")
      list(APPEND header_check_sources "${source}")
    endforeach()
  endforeach()
endforeach()

if(header_check_sources)
  add_library(header_check OBJECT ${header_check_sources})
  target_link_libraries(header_check PRIVATE kolt vur_dl)
  target_compile_options(
    header_check
    PRIVATE -Wall
            -Wextra
            -Wpedantic
            -Wundef
            -Wshadow
            -Wconversion
            -Werror
            $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes>
            $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>)
endif()
