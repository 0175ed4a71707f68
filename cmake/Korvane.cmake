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
  # With sanitizers g++ 12 takes the value of an empty optional for used.
  target_compile_options(korvane_options INTERFACE -fsanitize=address,undefined -fno-sanitize-recover=undefined
    -fno-omit-frame-pointer -Wno-maybe-uninitialized)
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

# korvane_qml_module(name URI uri SOURCES... QML_FILES... [SINGLETONS...] [LINK targets...]): one folder of the
# screen as the static library korvane_<name>, importable as <uri>. Link the target AND korvane_<name>plugin into a
# program. Headers with QML types are included by basename in generated code, so basenames are unique.
function(korvane_qml_module name)
  cmake_parse_arguments(ARG "" "URI" "SOURCES;QML_FILES;SINGLETONS;IMPORTS;LINK" ${ARGN})
  set_source_files_properties(${ARG_SINGLETONS} PROPERTIES QT_QML_SINGLETON_TYPE TRUE)
  qt_add_library(korvane_${name} STATIC)
  set_target_properties(korvane_${name} PROPERTIES AUTOMOC ON)
  # What is compiled from QML is not ours, and takes as long to build as all the rest.
  set(cache)
  if(KORVANE_SANITIZE)
    set(cache NO_CACHEGEN)
  endif()
  qt_add_qml_module(korvane_${name} ${cache} URI ${ARG_URI} VERSION 1.0 RESOURCE_PREFIX /qt/qml
    SOURCES ${ARG_SOURCES} QML_FILES ${ARG_QML_FILES} ${ARG_SINGLETONS} IMPORTS ${ARG_IMPORTS}
    DEPENDENCIES QtQuick)
  target_include_directories(korvane_${name} PUBLIC ${CMAKE_CURRENT_SOURCE_DIR})
  target_link_libraries(korvane_${name} PUBLIC korvane_options Threads::Threads Qt6::Quick ${ARG_LINK})
  # What Qt generates from QML shadows names of its own.
  foreach(file IN LISTS ARG_QML_FILES ARG_SINGLETONS)
    string(REGEX REPLACE "[.]qml$" "_qml.cpp" generated ${file})
    set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/.rcc/qmlcache/korvane_${name}_${generated}
      PROPERTIES COMPILE_OPTIONS -Wno-shadow)
  endforeach()
endfunction()
