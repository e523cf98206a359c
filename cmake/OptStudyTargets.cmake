# How every target of the project is made: one function for a library, one for a test, one for a program.

add_library(optstudy_flags INTERFACE)
target_compile_options(optstudy_flags INTERFACE -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)
target_compile_definitions(optstudy_flags INTERFACE QT_NO_KEYWORDS QT_NO_CAST_TO_ASCII)
if(OPTSTUDY_SANITIZE STREQUAL "fuzzer")
  # Optimised, because what counts is how many cases are tried; clang only.
  target_compile_options(optstudy_flags INTERFACE -O1 -g1 -fno-omit-frame-pointer -fno-sanitize-recover=all
                         -fsanitize=fuzzer-no-link,address,undefined,float-cast-overflow)
  target_link_options(optstudy_flags INTERFACE -fsanitize=address,undefined,float-cast-overflow)
elseif(OPTSTUDY_SANITIZE)
  # Lines are all that a report needs; full debug information costs a fifth of the compile time.
  target_compile_options(optstudy_flags INTERFACE -g1)
endif()
if(OPTSTUDY_SANITIZE STREQUAL "address")
  target_compile_definitions(optstudy_flags INTERFACE OPTSTUDY_ADDRESS_SANITIZER)
  target_compile_options(optstudy_flags INTERFACE -O0 -fsanitize=address,undefined,float-cast-overflow
                         -fno-sanitize-recover=all -fno-omit-frame-pointer)
  target_link_options(optstudy_flags INTERFACE -fsanitize=address,undefined,float-cast-overflow)
elseif(OPTSTUDY_SANITIZE STREQUAL "thread")
  # Instrumented code confuses this warning (it finds std::regex guilty); the plain builds keep it.
  target_compile_options(optstudy_flags INTERFACE -Wno-maybe-uninitialized -O1 -fsanitize=thread
                         -fno-omit-frame-pointer)
  target_link_options(optstudy_flags INTERFACE -fsanitize=thread)
endif()

if(OPTSTUDY_COVERAGE)
  # clang's own, which counts what the source says and not what the compiler made of it.
  target_compile_options(optstudy_flags INTERFACE -fprofile-instr-generate -fcoverage-mapping)
  target_link_options(optstudy_flags INTERFACE -fprofile-instr-generate)
endif()

# Headers of the system and of Qt that most sources include are compiled once for all sources of one kind, which saves
# a third of the compile time. The build for clang-tidy goes without, and so finds a source that forgets an include.
set(optstudy_common_headers
    <algorithm> <array> <cmath> <cstddef> <cstdint> <cstdlib> <cstring> <exception> <functional> <limits> <map> <memory>
    <optional> <set> <stdexcept> <string> <string_view> <type_traits> <unordered_map> <utility> <vector>)
set(optstudy_test_headers <filesystem> <fstream> <iostream> <sstream> <gtest/gtest.h>)

# optstudy_precompile(<target> <LIBRARY|TEST|PLAIN_TEST>)
# What shares precompiled headers is compiled with the same options: libraries with hidden symbols, tests, and tests
# that do not link Qt.
function(optstudy_precompile target kind)
  if(NOT OPTSTUDY_PRECOMPILE)
    return()
  endif()
  string(TOLOWER optstudy_precompiled_${kind} shared)
  if(NOT TARGET ${shared})
    file(CONFIGURE OUTPUT ${PROJECT_BINARY_DIR}/precompiled/${shared}.cpp CONTENT "")
    add_library(${shared} OBJECT ${PROJECT_BINARY_DIR}/precompiled/${shared}.cpp)
    target_link_libraries(${shared} PRIVATE optstudy_flags)
    target_precompile_headers(${shared} PRIVATE ${optstudy_common_headers})
    if(kind STREQUAL "LIBRARY")
      set_target_properties(${shared} PROPERTIES POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden
                            VISIBILITY_INLINES_HIDDEN ON)
    else()
      target_link_libraries(${shared} PRIVATE GTest::gtest)
      target_precompile_headers(${shared} PRIVATE ${optstudy_test_headers})
    endif()
    if(NOT kind STREQUAL "PLAIN_TEST")
      target_link_libraries(${shared} PRIVATE Qt5::Core)
      target_precompile_headers(${shared} PRIVATE <QString>)
    endif()
  endif()
  target_precompile_headers(${target} REUSE_FROM ${shared})
endfunction()

# Benchmarks register themselves with this one, so that it is there to be built even while there is none.
add_custom_target(optstudy_benchmarks)

# optstudy_library(<Name> [SHARED] [INSTALL] [DEFAULT_VISIBILITY] HEADERS ... SOURCES ... [DEPENDS ...] [PRIVATE_DEPENDS ...])
# Makes <Name>_objects (position independent, hidden symbols), the library <Name> and its alias OptStudy::<Name>.
# Unit tests link <Name>_objects, so that they reach internals and nothing extra is exported.
function(optstudy_library name)
  cmake_parse_arguments(ARG "SHARED;INSTALL;DEFAULT_VISIBILITY;QT_META_OBJECTS" ""
                        "HEADERS;SOURCES;DEPENDS;PRIVATE_DEPENDS" ${ARGN})
  add_library(${name}_objects OBJECT ${ARG_SOURCES} ${ARG_HEADERS})
  set_target_properties(${name}_objects PROPERTIES POSITION_INDEPENDENT_CODE ON)
  if(NOT ARG_DEFAULT_VISIBILITY)
    set_target_properties(${name}_objects PROPERTIES CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  endif()
  if(ARG_QT_META_OBJECTS)
    set_target_properties(${name}_objects PROPERTIES AUTOMOC ON)
  endif()
  target_include_directories(${name}_objects PUBLIC ${PROJECT_SOURCE_DIR})
  target_link_libraries(${name}_objects PUBLIC ${ARG_DEPENDS} PRIVATE ${ARG_PRIVATE_DEPENDS}
                        $<BUILD_INTERFACE:optstudy_flags>)
  if(NOT ARG_DEFAULT_VISIBILITY)
    optstudy_precompile(${name}_objects LIBRARY)
  endif()

  if(ARG_SHARED)
    add_library(${name} SHARED $<TARGET_OBJECTS:${name}_objects>)
    set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION}
                          SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
  else()
    add_library(${name} STATIC $<TARGET_OBJECTS:${name}_objects>)
  endif()
  add_library(OptStudy::${name} ALIAS ${name})
  set_target_properties(${name} PROPERTIES OUTPUT_NAME OptStudy${name} LINKER_LANGUAGE CXX)
  target_include_directories(${name} PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}>
                             $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/optstudy>)
  target_compile_features(${name} PUBLIC cxx_std_17)
  target_link_libraries(${name} PUBLIC ${ARG_DEPENDS} PRIVATE ${ARG_PRIVATE_DEPENDS}
                        $<BUILD_INTERFACE:optstudy_flags>)

  foreach(header ${ARG_HEADERS})
    set_property(GLOBAL APPEND PROPERTY OPTSTUDY_PUBLIC_HEADERS ${name}/${header})
  endforeach()
  if(ARG_INSTALL)
    install(TARGETS ${name} EXPORT OptStudyTargets
            LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
    install(FILES ${ARG_HEADERS} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/optstudy/${name})
    set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN")
    set_property(GLOBAL APPEND PROPERTY OPTSTUDY_INSTALLED_TARGETS ${name})
  endif()
endfunction()

# optstudy_program(<Name> [INSTALL] SOURCES ... LINK ...)
function(optstudy_program name)
  cmake_parse_arguments(ARG "INSTALL" "" "SOURCES;LINK" ${ARGN})
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} optstudy_flags)
  if(ARG_INSTALL)
    install(TARGETS ${name} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    # Relative, so that an installed tree can be moved.
    set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}")
    set_property(GLOBAL APPEND PROPERTY OPTSTUDY_INSTALLED_TARGETS ${name})
  endif()
endfunction()

# optstudy_benchmark(<Name> SOURCES ... LINK ...)
# Goes where `./dev bench` finds and runs it; the sources bring their own main, BENCHMARK_MAIN() for example.
function(optstudy_benchmark name)
  cmake_parse_arguments(ARG "" "" "SOURCES;LINK" ${ARGN})
  find_package(benchmark REQUIRED)
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} benchmark::benchmark optstudy_flags)
  set_target_properties(${name} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR}/benchmarks)
  add_dependencies(optstudy_benchmarks ${name})
endfunction()

# optstudy_test(<Name> [WITHOUT_QT] SOURCES ... LINK ... [LABELS ...] [TIMEOUT seconds] [ENVIRONMENT VAR=value ...])
# Every case is a ctest entry, and so a process, of its own. TestMain takes the process locale from the
# environment, so that a German environment reaches the code under test.
function(optstudy_test name)
  if(NOT OPTSTUDY_BUILD_TESTS)
    return()
  endif()
  cmake_parse_arguments(ARG "WITHOUT_QT" "TIMEOUT" "SOURCES;LINK;LABELS;ENVIRONMENT" ${ARGN})
  if(NOT ARG_TIMEOUT)
    set(ARG_TIMEOUT 60)
  endif()
  if(NOT ARG_LABELS)
    set(ARG_LABELS unit)
  endif()
  add_executable(${name} ${ARG_SOURCES})
  target_link_libraries(${name} PRIVATE ${ARG_LINK} optstudy_test_main GTest::gtest optstudy_flags)
  if(ARG_WITHOUT_QT)
    optstudy_precompile(${name} PLAIN_TEST)
  else()
    optstudy_precompile(${name} TEST)
  endif()
  # The lists pass through a generated script, which would otherwise take them apart.
  string(REPLACE ";" "\\;" labels "${ARG_LABELS}")
  string(REPLACE ";" "\\;" environment "${ARG_ENVIRONMENT}")
  set(properties TIMEOUT ${ARG_TIMEOUT} LABELS "${labels}")
  if(environment)
    list(APPEND properties ENVIRONMENT "${environment}")
  endif()
  gtest_discover_tests(${name} DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60 PROPERTIES ${properties})
endfunction()

# Called once, after every room: package files, the uninstall script, and the target optstudy_installed, which
# builds what is installed and nothing else.
function(optstudy_install_package)
  include(CMakePackageConfigHelpers)
  set(directory ${CMAKE_INSTALL_LIBDIR}/cmake/OptStudy)
  configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/OptStudyConfig.cmake.in
                                ${PROJECT_BINARY_DIR}/OptStudyConfig.cmake INSTALL_DESTINATION ${directory})
  # Before 1.0 a minor version may change the interface, so only the same minor version is compatible.
  write_basic_package_version_file(${PROJECT_BINARY_DIR}/OptStudyConfigVersion.cmake
                                   VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion)
  install(FILES ${PROJECT_BINARY_DIR}/OptStudyConfig.cmake ${PROJECT_BINARY_DIR}/OptStudyConfigVersion.cmake
          DESTINATION ${directory})
  install(PROGRAMS ${PROJECT_SOURCE_DIR}/tools/uninstall DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/optstudy)
  install(EXPORT OptStudyTargets NAMESPACE OptStudy:: DESTINATION ${directory})
  get_property(headers GLOBAL PROPERTY OPTSTUDY_PUBLIC_HEADERS)
  string(REPLACE ";" "\n" headers "${headers}")
  file(WRITE ${PROJECT_BINARY_DIR}/public-headers.txt "${headers}\n")
  get_property(installed GLOBAL PROPERTY OPTSTUDY_INSTALLED_TARGETS)
  add_custom_target(optstudy_installed DEPENDS ${installed})
endfunction()
