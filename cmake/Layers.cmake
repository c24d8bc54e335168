# One library a folder. STANDS_ON names the folders below it, and the linker holds the house to it:
# the tests of a folder are linked with that folder, what it stands on, and the in-memory platform.
function(coffrelune_layer name)
  cmake_parse_arguments(ARG "" "" "SOURCES;STANDS_ON;PRIVATE_LIBRARIES" ${ARGN})
  add_library(coffrelune_${name} STATIC ${ARG_SOURCES})
  target_include_directories(coffrelune_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(coffrelune_${name} PUBLIC ${ARG_STANDS_ON}
                                           PRIVATE coffrelune_compiler ${ARG_PRIVATE_LIBRARIES})
  if(COFFRELUNE_SANITIZE)
    target_link_options(coffrelune_${name} PUBLIC -fsanitize=address,undefined)
  endif()
endfunction()

# A test program: every *_test.cpp of the calling folder, so that none is left out of the build.
function(coffrelune_tests name)
  cmake_parse_arguments(ARG "" "" "LINKS;EXTRA_SOURCES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_test.cpp)
  add_executable(${name}_tests ${sources} ${ARG_EXTRA_SOURCES})
  target_include_directories(${name}_tests PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name}_tests PRIVATE ${ARG_LINKS} coffrelune_compiler GTest::gtest_main GTest::gmock)
  set_target_properties(${name}_tests PROPERTIES COFFRELUNE_IS_TEST ON)
  # Sources of the program that a test compiles for itself are checked as the program is.
  list(FILTER ARG_EXTRA_SOURCES INCLUDE REGEX "^${PROJECT_SOURCE_DIR}/src/")
  set_source_files_properties(${ARG_EXTRA_SOURCES} PROPERTIES COMPILE_OPTIONS "${COFFRELUNE_UNDEFINED}")
  if(CMAKE_CROSSCOMPILING)
    # One process a program: the emulator takes longer to start than most cases to run. Optimizing
    # what runs once would take longer still.
    target_compile_options(${name}_tests PRIVATE -O0)
    add_test(NAME ${name} COMMAND ${name}_tests --gtest_output=xml:reports/${name}.xml
             WORKING_DIRECTORY ${CMAKE_BINARY_DIR})
    set_tests_properties(${name} PROPERTIES TIMEOUT 600)
    return()
  endif()
  gtest_discover_tests(${name}_tests TEST_PREFIX ${name}. DISCOVERY_TIMEOUT 60)
endfunction()
