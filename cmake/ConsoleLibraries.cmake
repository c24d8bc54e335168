# CLI11 and nlohmann-json, which are headers only. A build for another system takes those of the
# building machine, by themselves: its other headers would be wrong there.
if(NOT CMAKE_CROSSCOMPILING)
  find_package(CLI11 REQUIRED)
  find_package(nlohmann_json REQUIRED)
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
