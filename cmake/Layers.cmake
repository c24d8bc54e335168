# One library a folder. STANDS_ON names the folders below it, and the linker holds the house to it:
# the tests of a folder are linked with that folder, what it stands on, and the in-memory platform.
function(coffrelune_layer name)
  cmake_parse_arguments(ARG "" "" "SOURCES;STANDS_ON;PRIVATE_LIBRARIES" ${ARGN})
  if(COFFRELUNE_GROUPS STREQUAL "all")
    coffrelune_in_groups(ARG_SOURCES coffrelune_${name})
  endif()
  add_library(coffrelune_${name} STATIC ${ARG_SOURCES})
  target_include_directories(coffrelune_${name} PUBLIC ${PROJECT_SOURCE_DIR}/src)
  target_link_libraries(coffrelune_${name} PUBLIC ${ARG_STANDS_ON}
                                           PRIVATE coffrelune_compiler ${ARG_PRIVATE_LIBRARIES})
  if(COFFRELUNE_SANITIZE)
    target_link_options(coffrelune_${name} PUBLIC -fsanitize=address,undefined)
  endif()
endfunction()

# Builds that only test compile sources in groups: "all" of them, or those of the "tests". The others
# compile each by itself, so that a missing include shows.
set(COFFRELUNE_GROUPS "" CACHE STRING "Which sources to compile in groups: none, tests or all")
set(COFFRELUNE_GROUP_SIZE 12)

# Puts what is to be compiled instead of the sources in the list LIST of a target. Those that are named
# after it, and those with definitions of their own, stay by themselves.
function(coffrelune_in_groups list target)
  set(group_paths "")
  set(alone "${ARGN}")
  foreach(source IN LISTS ${list})
    get_source_file_property(special ${source} COMPILE_DEFINITIONS)
    if(special)
      list(APPEND alone ${source})
    elseif(NOT source IN_LIST alone)
      get_filename_component(source ${source} ABSOLUTE)
      list(APPEND group_paths ${source})
    endif()
  endforeach()
  find_program(COFFRELUNE_PYTHON python3 REQUIRED NO_CMAKE_FIND_ROOT_PATH)
  set(script ${PROJECT_SOURCE_DIR}/tools/source_groups.py)
  execute_process(
    COMMAND ${COFFRELUNE_PYTHON} ${script} ${CMAKE_BINARY_DIR}/groups/${target}
            ${COFFRELUNE_GROUP_SIZE} ${group_paths}
    WORKING_DIRECTORY ${PROJECT_SOURCE_DIR}
    OUTPUT_VARIABLE group_sources COMMAND_ERROR_IS_FATAL ANY)
  # A source that is changed may stand with others no longer.
  set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${script} ${group_paths})
  set(${list} ${group_sources} ${alone} PARENT_SCOPE)
endfunction()

# A test program: every *_test.cpp of the calling folder, so that none is left out of the build.
function(coffrelune_tests name)
  cmake_parse_arguments(ARG "" "" "LINKS;EXTRA_SOURCES" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/*_test.cpp)
  if(COFFRELUNE_GROUPS)
    coffrelune_in_groups(sources ${name}_tests)
  endif()
  add_executable(${name}_tests ${sources} ${ARG_EXTRA_SOURCES})
  target_include_directories(${name}_tests PRIVATE ${PROJECT_SOURCE_DIR}/tests)
  target_link_libraries(${name}_tests PRIVATE ${ARG_LINKS} coffrelune_compiler GTest::gtest_main GTest::gmock)
  set_target_properties(${name}_tests PROPERTIES COFFRELUNE_IS_TEST ON)
  # Sources of the program that a test compiles for itself are checked as the program is.
  list(FILTER ARG_EXTRA_SOURCES INCLUDE REGEX "^${PROJECT_SOURCE_DIR}/src/")
  set_source_files_properties(${ARG_EXTRA_SOURCES} PROPERTIES COMPILE_OPTIONS "${COFFRELUNE_UNDEFINED}")
  if(CMAKE_CROSSCOMPILING)
    # Optimizing what runs once would take longer than to run it.
    target_compile_options(${name}_tests PRIVATE -O0 -Wa,-mbig-obj)
  endif()
  if(CMAKE_CROSSCOMPILING OR COFFRELUNE_SANITIZE)
    # One process a program: the emulator, or the sanitizer, takes longer to start than most cases
    # to run.
    add_test(NAME ${name} COMMAND ${name}_tests --gtest_output=xml:reports/${name}.xml
             WORKING_DIRECTORY ${CMAKE_BINARY_DIR})
    set_tests_properties(${name} PROPERTIES TIMEOUT 900)
    return()
  endif()
  gtest_discover_tests(${name}_tests TEST_PREFIX ${name}. DISCOVERY_TIMEOUT 60)
endfunction()
