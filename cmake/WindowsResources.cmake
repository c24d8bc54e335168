# The icon, the version and the manifest of a Windows program. DESCRIPTION is what the system shows
# in the program's properties; TOOLKIT adds the pictures that the windows need.
set(COFFRELUNE_WINDOWS_PACKAGING ${PROJECT_SOURCE_DIR}/packaging/windows)

function(coffrelune_windows_resources target)
  if(NOT WIN32)
    return()
  endif()
  cmake_parse_arguments(ARG "TOOLKIT" "DESCRIPTION" "" ${ARGN})
  set(major ${PROJECT_VERSION_MAJOR})
  set(minor ${PROJECT_VERSION_MINOR})
  set(RESOURCE_TARGET ${target})
  set(RESOURCE_DESCRIPTION "${ARG_DESCRIPTION}")
  set(RESOURCE_VERSION ${major}.${minor}.0.0)
  set(RESOURCE_VERSION_NUMBERS ${major},${minor},0,0)
  set(RESOURCE_ICON ${COFFRELUNE_WINDOWS_PACKAGING}/coffrelune.ico)
  set(RESOURCE_MANIFEST ${CMAKE_CURRENT_BINARY_DIR}/${target}.manifest)
  set(script ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
  if(ARG_TOOLKIT)
    # In the same script: the system numbers the icons of each by itself, and equal numbers clash.
    set(RESOURCE_TOOLKIT "#define wxUSE_NO_MANIFEST 1\n#include <wx/msw/wx.rc>")
    get_target_property(folders coffrelune_wx_toolkit INTERFACE_INCLUDE_DIRECTORIES)
  endif()
  configure_file(${COFFRELUNE_WINDOWS_PACKAGING}/coffrelune.manifest.in ${RESOURCE_MANIFEST} @ONLY)
  configure_file(${COFFRELUNE_WINDOWS_PACKAGING}/coffrelune.rc.in ${script} @ONLY)
  target_sources(${target} PRIVATE ${script})
  set_source_files_properties(${script} PROPERTIES
    OBJECT_DEPENDS "${RESOURCE_MANIFEST};${RESOURCE_ICON}"
    INCLUDE_DIRECTORIES "${folders}")
  if(MSVC)
    # The manifest is among the resources.
    target_link_options(${target} PRIVATE /MANIFEST:NO)
    get_target_property(windows ${target} WIN32_EXECUTABLE)
    if(windows)
      # The entry procedure is main on every system.
      target_link_options(${target} PRIVATE /ENTRY:mainCRTStartup)
    endif()
  else()
    # On a terminal server Windows shows other directories and keys to a program that does not say
    # that it serves several users at once. The other linker says so by itself.
    target_link_options(${target} PRIVATE LINKER:--tsaware)
  endif()
endfunction()
