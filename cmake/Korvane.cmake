# What every target of the project shares.

add_library(korvane_options INTERFACE)
target_include_directories(korvane_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(korvane_options INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
  -Woverloaded-virtual -Werror)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
  # g++ 12 sees overlapping copies in "text" + std::string that are not there (GCC bug 105651).
  target_compile_options(korvane_options INTERFACE -Wno-restrict)
endif()
target_compile_definitions(korvane_options INTERFACE QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII
  $<$<CONFIG:Debug>:_GLIBCXX_ASSERTIONS>)
if(KORVANE_SANITIZE)
  target_compile_options(korvane_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined
    -fno-omit-frame-pointer)
  target_link_options(korvane_options INTERFACE -fsanitize=address,undefined)
endif()

# korvane_library(name SOURCES... [LINK targets...]): the static library korvane_<name> of one folder.
# Header-only folders need none.
function(korvane_library name)
  cmake_parse_arguments(ARG "" "" "LINK" ${ARGN})
  add_library(korvane_${name} STATIC ${ARG_UNPARSED_ARGUMENTS})
  target_link_libraries(korvane_${name} PUBLIC korvane_options Threads::Threads ${ARG_LINK})
endfunction()

# korvane_test(name SOURCES... LINK targets...): a GoogleTest program of one folder, its tests listed one by one.
# TIMEOUT seconds and RESOURCE_LOCK names are per test.
function(korvane_test name)
  cmake_parse_arguments(ARG "RUN_SERIAL" "TIMEOUT" "LINK" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 120)
  endif()
  add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
  target_link_libraries(${name} PRIVATE korvane_options ${ARG_LINK} GTest::gmock GTest::gtest GTest::gtest_main)
  set(serial FALSE)
  if(ARG_RUN_SERIAL)
    set(serial TRUE)
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
    PROPERTIES TIMEOUT ${ARG_TIMEOUT} RUN_SERIAL ${serial} ENVIRONMENT "QT_QPA_PLATFORM=offscreen")
endfunction()
