# The manual that F1 opens: one page and its pictures, in "aide" beside the programs.
find_program(COFFRELUNE_PYTHON python3 REQUIRED NO_CMAKE_FIND_ROOT_PATH)
set(COFFRELUNE_MANUAL ${CMAKE_RUNTIME_OUTPUT_DIRECTORY}/aide)
file(GLOB pictures CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/docs/captures/*.png)
add_custom_command(
  OUTPUT ${COFFRELUNE_MANUAL}/manuel.html
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${COFFRELUNE_MANUAL}
  COMMAND ${COFFRELUNE_PYTHON} ${PROJECT_SOURCE_DIR}/tools/make-manual.py
          ${PROJECT_SOURCE_DIR}/docs/manuel.md ${COFFRELUNE_MANUAL}
  DEPENDS ${PROJECT_SOURCE_DIR}/docs/manuel.md ${PROJECT_SOURCE_DIR}/tools/make-manual.py ${pictures}
  VERBATIM)
add_custom_target(manual ALL DEPENDS ${COFFRELUNE_MANUAL}/manuel.html)
