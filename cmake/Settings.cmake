# SPDX-License-Identifier: Apache-2.0
# Language levels, warnings, output folders, compiler cache: what holds for every target.

set(CMAKE_C_STANDARD 11)
set(CMAKE_C_STANDARD_REQUIRED ON)
set(CMAKE_C_EXTENSIONS OFF)
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(NOT CMAKE_BUILD_TYPE)
  set(CMAKE_BUILD_TYPE Release)
endif()

# -O2 rather than CMake's -O3: no slower on the log path, and a good deal smaller.
set(CMAKE_C_FLAGS_RELEASE "-O2 -DNDEBUG")
set(CMAKE_CXX_FLAGS_RELEASE "-O2 -DNDEBUG")

# Dev: asserts on, optimised enough for the tests' deadlines, readable in a debugger.
set(CMAKE_C_FLAGS_DEV "-O1 -g")
set(CMAKE_CXX_FLAGS_DEV "-O1 -g")
set(CMAKE_EXE_LINKER_FLAGS_DEV "")
set(CMAKE_SHARED_LINKER_FLAGS_DEV "")

set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/lib")
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${PROJECT_BINARY_DIR}/bin")

find_program(VUR_DL_CCACHE ccache)
mark_as_advanced(VUR_DL_CCACHE)
if(VUR_DL_CCACHE)
  foreach(language IN ITEMS C CXX)
    if(NOT CMAKE_${language}_COMPILER_LAUNCHER)
      set(CMAKE_${language}_COMPILER_LAUNCHER "${VUR_DL_CCACHE}")
    endif()
  endforeach()
endif()

# Warnings are an interface target, so that generated code can do without them.
add_library(vur_dl_warnings INTERFACE)
target_compile_options(
  vur_dl_warnings
  INTERFACE -Wall
            -Wextra
            -Wpedantic
            -Wshadow
            -Wconversion
            -Wsign-conversion
            -Wundef
            -Wcast-align
            -Wformat=2
            -Wvla
            -Wimplicit-fallthrough
            $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>
            $<$<COMPILE_LANGUAGE:CXX>:-Wnon-virtual-dtor>
            $<$<COMPILE_LANGUAGE:CXX>:-Woverloaded-virtual>
            $<$<COMPILE_LANGUAGE:CXX>:-Wextra-semi>
            $<$<COMPILE_LANGUAGE:C>:-Wstrict-prototypes>
            $<$<COMPILE_LANGUAGE:C>:-Wmissing-prototypes>
            $<$<BOOL:${VUR_DL_WERROR}>:-Werror>)

# A program needs only the libraries that it calls.
set(VUR_DL_EXECUTABLE_LINK_OPTIONS -Wl,--as-needed)
