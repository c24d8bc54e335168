# CLI11, nlohmann-json and xxHash, which are headers only (xxHash when it is asked to be). A build for another system takes those of the
# building machine, by themselves: its other headers would be wrong there.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
  find_path(COFFRELUNE_XXHASH_PARENT NAMES xxhash.h REQUIRED)
  add_library(xxhash::headers INTERFACE IMPORTED GLOBAL)
  target_include_directories(xxhash::headers SYSTEM INTERFACE ${COFFRELUNE_XXHASH_PARENT})
  return()
endif()

function(coffrelune_borrowed_headers target folder)
  find_path(COFFRELUNE_${folder}_PARENT NAMES ${folder} PATHS /usr/local/include /usr/include
            NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
  set(borrowed ${CMAKE_BINARY_DIR}/headers/${folder})
  file(MAKE_DIRECTORY ${borrowed})
  file(CREATE_LINK ${COFFRELUNE_${folder}_PARENT}/${folder} ${borrowed}/${folder} SYMBOLIC)
  add_library(${target} INTERFACE IMPORTED GLOBAL)
  target_include_directories(${target} SYSTEM INTERFACE ${borrowed})
endfunction()
coffrelune_borrowed_headers(CLI11::CLI11 CLI)
coffrelune_borrowed_headers(nlohmann_json::nlohmann_json nlohmann)

find_path(COFFRELUNE_XXHASH_PARENT NAMES xxhash.h PATHS /usr/local/include /usr/include
          NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH REQUIRED)
file(MAKE_DIRECTORY ${CMAKE_BINARY_DIR}/headers/xxhash)
file(CREATE_LINK ${COFFRELUNE_XXHASH_PARENT}/xxhash.h ${CMAKE_BINARY_DIR}/headers/xxhash/xxhash.h SYMBOLIC)
add_library(xxhash::headers INTERFACE IMPORTED GLOBAL)
target_include_directories(xxhash::headers SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/headers/xxhash)
