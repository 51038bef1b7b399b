# What every target here shares: its warnings, and what keeps its numbers the same.

set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
if(NOT CMAKE_BUILD_TYPE AND NOT CMAKE_CONFIGURATION_TYPES)
  set(CMAKE_BUILD_TYPE Release)
endif()

# An installed program finds its libraries wherever the whole was put.
file(RELATIVE_PATH sstr_lib_from_bin ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
set(CMAKE_INSTALL_RPATH "$ORIGIN" "$ORIGIN/${sstr_lib_from_bin}")

# The same bits from every compiler and optimisation level: no fused multiply-add.
add_library(sstr_numbers INTERFACE)
target_compile_options(sstr_numbers INTERFACE -ffp-contract=off)

# Our libraries' functions are nobody's to replace, so they are called directly and may be inlined; and
# a square root is an instruction. Neither changes a bit of a result.
add_compile_options(-fno-semantic-interposition -fno-math-errno)

# For our own sources: link it PRIVATE, and to a static library as $<BUILD_INTERFACE:sstr_warnings>.
add_library(sstr_warnings INTERFACE)
target_compile_options(sstr_warnings INTERFACE -Wall -Wextra -Wpedantic -Wconversion
  $<$<BOOL:${SSTR_WARNINGS_AS_ERRORS}>:-Werror>)

# The tests' own sources are long and run briefly: optimising them would take half of a build. What they test is
# compiled as the build type says.
set(SSTR_TEST_OPTIONS -O0 CACHE STRING "Compiler options of the tests' own sources, beside those of the build type")

# One line a test program: sstr_test(NAME SOURCES... LIBRARIES...), registered with ctest test by test.
function(sstr_test name)
  cmake_parse_arguments(PARSE_ARGV 1 T "" "" "SOURCES;LIBRARIES")
  if(NOT T_SOURCES)
    set(T_SOURCES ${name}.cpp)
  endif()
  add_executable(${name} ${T_SOURCES})
  target_compile_options(${name} PRIVATE ${SSTR_TEST_OPTIONS})
  target_link_libraries(${name} PRIVATE ${T_LIBRARIES} sstr_test_support sstr_numbers sstr_warnings GTest::gmock_main)
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST PROPERTIES TIMEOUT 300)
endfunction()
