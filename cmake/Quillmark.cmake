# Shared compile settings and the helper that declares one library per source folder.

if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang")
  add_compile_options(-Wall -Wextra -Wpedantic -Wno-unused-parameter)
endif()

if(QUILLMARK_SANITIZE)
  add_compile_options(-fsanitize=address,undefined -fno-omit-frame-pointer -fno-sanitize-recover=undefined)
  add_link_options(-fsanitize=address,undefined)
endif()

if(QUILLMARK_FUZZ)
  # Every library is instrumented for coverage; only the fuzz executables link the libFuzzer main.
  add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-omit-frame-pointer)
  add_link_options(-fsanitize=address,undefined)
endif()

# quillmark_library(NAME folder DEPS ...): a static library of every .cpp in src/<folder>,
# platform files excluded unless they match the platform being built.
function(quillmark_library name folder)
  cmake_parse_arguments(ARG "" "" "DEPS;PUBLIC_LIBS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/src/${folder}/*.cpp)
  if(WIN32)
    list(FILTER sources EXCLUDE REGEX "_posix\\.cpp$")
  else()
    list(FILTER sources EXCLUDE REGEX "_win32\\.cpp$")
  endif()
  if(sources)
    add_library(${name} STATIC ${sources})
    target_include_directories(${name} PUBLIC ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(${name} PUBLIC ${ARG_DEPS} ${ARG_PUBLIC_LIBS})
  else()
    # A folder whose code has not landed yet still takes its place in the layering.
    add_library(${name} INTERFACE)
    target_include_directories(${name} INTERFACE ${CMAKE_SOURCE_DIR}/src)
    target_link_libraries(${name} INTERFACE ${ARG_DEPS} ${ARG_PUBLIC_LIBS})
  endif()
endfunction()

# quillmark_test(NAME folder LIBS ...): one GoogleTest executable of every .cpp in tests/<folder>.
function(quillmark_test name folder)
  cmake_parse_arguments(ARG "" "" "LIBS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_SOURCE_DIR}/tests/${folder}/*.cpp)
  if(NOT sources)
    return()
  endif()
  add_executable(${name} ${sources})
  target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests ${CMAKE_SOURCE_DIR}/src)
  target_link_libraries(${name} PRIVATE ${ARG_LIBS} GTest::gtest GTest::gtest_main)
  target_compile_definitions(${name} PRIVATE
    QUILLMARK_SOURCE_DIR="${CMAKE_SOURCE_DIR}"
    QUILLMARK_TEST_DIR="${CMAKE_SOURCE_DIR}/tests")
  if(CMAKE_CROSSCOMPILING)
    # Under Wine each start costs about a second: the executable runs whole, as one test.
    add_test(NAME ${name} COMMAND ${name})
    set_tests_properties(${name} PROPERTIES
      ENVIRONMENT "QUILLMARK_HOME=${CMAKE_BINARY_DIR}/test-home;${QUILLMARK_WINE_ENVIRONMENT}"
      FIXTURES_REQUIRED wine_prefix)
  else()
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60
      PROPERTIES ENVIRONMENT "QUILLMARK_HOME=${CMAKE_BINARY_DIR}/test-home")
  endif()
endfunction()

# The Wine that runs the cross-built tests: quiet, with its own prefix in the build folder, made
# once by a setup test that the test executables depend on.
function(quillmark_wine_prefix)
  set(prefix ${CMAKE_BINARY_DIR}/wine)
  set(QUILLMARK_WINE_ENVIRONMENT "WINEPREFIX=${prefix};WINEDEBUG=-all;WINEDLLOVERRIDES=mscoree,mshtml="
      PARENT_SCOPE)
  find_program(QUILLMARK_WINEBOOT wineboot REQUIRED)
  add_test(NAME wine_prefix COMMAND ${CMAKE_COMMAND} -E env
    WINEPREFIX=${prefix} WINEDEBUG=-all WINEDLLOVERRIDES=mscoree,mshtml=
    ${CMAKE_COMMAND} -DPREFIX=${prefix} -DWINEBOOT=${QUILLMARK_WINEBOOT} -DWINE=${CMAKE_CROSSCOMPILING_EMULATOR}
    -P ${CMAKE_SOURCE_DIR}/cmake/wine-prefix.cmake)
  set_tests_properties(wine_prefix PROPERTIES FIXTURES_SETUP wine_prefix)
endfunction()
