# SPDX-License-Identifier: Apache-2.0
# One switch, VUR_DL_SANITIZE, instruments everything that is compiled here. The environment that the
# instrumented tests run in is composed here too, so that flags and options stay side by side.

set(VUR_DL_SANITIZER_ENVIRONMENT "")
set(VUR_DL_FUZZING OFF)

if(VUR_DL_SANITIZE)
  add_compile_options(-fsanitize=${VUR_DL_SANITIZE} -fno-sanitize-recover=all
                      -fno-omit-frame-pointer -g1)
  add_link_options(-fsanitize=${VUR_DL_SANITIZE})

  set(suppressions "${PROJECT_SOURCE_DIR}/scripts/sanitizers")
  if(VUR_DL_SANITIZE MATCHES "fuzzer")
    set(VUR_DL_FUZZING ON)
  endif()
  if(VUR_DL_SANITIZE MATCHES "address")
    list(
      APPEND
      VUR_DL_SANITIZER_ENVIRONMENT
      "ASAN_OPTIONS=detect_leaks=1:detect_stack_use_after_return=1:strict_string_checks=1:check_initialization_order=1"
      "LSAN_OPTIONS=suppressions=${suppressions}/lsan.supp:print_suppressions=0")
  endif()
  if(VUR_DL_SANITIZE MATCHES "undefined")
    list(APPEND VUR_DL_SANITIZER_ENVIRONMENT "UBSAN_OPTIONS=print_stacktrace=1")
  endif()
  if(VUR_DL_SANITIZE MATCHES "thread")
    list(
      APPEND
      VUR_DL_SANITIZER_ENVIRONMENT
      "TSAN_OPTIONS=suppressions=${suppressions}/tsan.supp:halt_on_error=0:exitcode=66:second_deadlock_stack=1"
    )
  endif()
endif()
