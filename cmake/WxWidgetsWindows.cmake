# Where find_package(wxWidgets) finds the one that a build for Windows on Linux links:
# tools/build-wxwidgets-windows.sh makes it, for every clone of this machine.
if(NOT (CMAKE_CROSSCOMPILING AND WIN32))
  return()
endif()
set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS
             ${PROJECT_SOURCE_DIR}/tools/build-wxwidgets-windows.sh)
execute_process(
  COMMAND ${PROJECT_SOURCE_DIR}/tools/build-wxwidgets-windows.sh --endroit
  OUTPUT_VARIABLE place OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
if(NOT EXISTS ${place}/bin/wx-config)
  message(FATAL_ERROR "Il manque wxWidgets pour Windows : tools/build-wxwidgets-windows.sh le construit.")
endif()
set(wxWidgets_CONFIG_EXECUTABLE ${place}/bin/wx-config CACHE FILEPATH "wx-config for Windows" FORCE)
list(APPEND CMAKE_FIND_ROOT_PATH ${place})
