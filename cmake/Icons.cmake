# The pictures of assets/icons compiled into a target, so that the program needs no file beside it.
# autres-noms.txt holds a line for each further name of a picture.
set(COFFRELUNE_ICONS_SCRIPT ${CMAKE_CURRENT_LIST_DIR}/GenerateIcons.cmake)

# Adds `iconSvg` (views/wx/pictures.h) to a target; compiled again when a picture changes.
function(coffrelune_icons target)
  set(folder ${PROJECT_SOURCE_DIR}/assets/icons)
  set(output ${CMAKE_CURRENT_BINARY_DIR}/${target}_icons.cpp)
  file(GLOB pictures CONFIGURE_DEPENDS ${folder}/*.svg)
  add_custom_command(
    OUTPUT ${output}
    COMMAND ${CMAKE_COMMAND} -DFOLDER=${folder} -DOUTPUT=${output} -P ${COFFRELUNE_ICONS_SCRIPT}
    DEPENDS ${pictures} ${folder}/autres-noms.txt ${COFFRELUNE_ICONS_SCRIPT}
    COMMENT "Pictures of ${target}"
    VERBATIM)
  target_sources(${target} PRIVATE ${output})
endfunction()
