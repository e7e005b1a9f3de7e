# The sanitizer and fuzzing builds.
#
# QI_SANITIZE: every target of the system, the tests and the tools with
# AddressSanitizer and UndefinedBehaviorSanitizer; any finding ends the process.
# QI_FUZZ: the libFuzzer targets of fuzz/ (clang++ only), on libraries built with
# the same sanitizers and with libFuzzer's coverage feedback.

option(QI_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer" OFF)
option(QI_FUZZ "Build the libFuzzer targets in fuzz/ (needs clang++; implies QI_SANITIZE)" OFF)

if(QI_FUZZ)
  if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "QI_FUZZ needs clang: configure with -DCMAKE_CXX_COMPILER=clang++")
  endif()
  set(QI_SANITIZE ON)
  add_compile_options(-fsanitize=fuzzer-no-link)
endif()

if(QI_SANITIZE)
  set(QI_SANITIZER_FLAGS -fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=all)
  add_compile_options(${QI_SANITIZER_FLAGS})
  # -O1 keeps the sanitizers' reports exact and compiles in less than half the time of -O2.
  add_compile_options(-O1)
  add_link_options(${QI_SANITIZER_FLAGS})
  # The instrumentation hides initialisations from GCC's flow analysis, which then reports
  # false -Wmaybe-uninitialized hits inside the standard library; the normal build keeps it.
  add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
  # CTest hands the sanitizers' options to every test, with the leak suppressions
  # for findings inside system libraries.
  set(QI_LSAN_SUPPRESSIONS ${PROJECT_SOURCE_DIR}/cmake/lsan.supp)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/SanitizerTestEnv.cmake.in SanitizerTestEnv.cmake @ONLY)
  set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES ${CMAKE_BINARY_DIR}/SanitizerTestEnv.cmake)
endif()

# qi_without_sanitizers(<target>): builds the target without the sanitizers, for a
# module that processes built without them load (the sqlite3 shell loads the Jet
# comparison extension): the sanitizers' runtime must come first in a process.
function(qi_without_sanitizers target)
  if(NOT QI_SANITIZE)
    return()
  endif()
  foreach(property COMPILE_OPTIONS LINK_OPTIONS)
    get_target_property(options ${target} ${property})
    if(options)
      list(REMOVE_ITEM options ${QI_SANITIZER_FLAGS} -fsanitize=fuzzer-no-link)
      set_target_properties(${target} PROPERTIES ${property} "${options}")
    endif()
  endforeach()
endfunction()
