# What `tools/package.sh` puts into a package. Linux: a .deb; Windows: the directory that the
# portable archive and the installer are made of.
option(COFFRELUNE_PACKAGE "Prepare what packages hold" OFF)
if(NOT COFFRELUNE_PACKAGE)
  return()
endif()
set(files ${PROJECT_SOURCE_DIR}/packaging)
set(made ${CMAKE_BINARY_DIR}/package)
file(MAKE_DIRECTORY ${made})

find_program(PYTHON python3 REQUIRED NO_CMAKE_FIND_ROOT_PATH)
add_custom_command(
  OUTPUT ${made}/Ok.wav ${made}/Erreur.wav
  COMMAND ${PYTHON} ${files}/sounds/make-sounds.py ${made}
  DEPENDS ${files}/sounds/make-sounds.py
  VERBATIM)
set(made_files ${made}/Ok.wav ${made}/Erreur.wav)

if(WIN32)
  add_custom_target(package_files ALL DEPENDS ${made_files})
  return()
endif()

include(GNUInstallDirs)
set(share ${CMAKE_INSTALL_DATADIR})
set(documents ${share}/doc/coffrelune)
install(TARGETS coffrelune coffrelune-console RUNTIME DESTINATION bin)
install(FILES ${made}/Ok.wav ${made}/Erreur.wav DESTINATION ${share}/coffrelune)
install(DIRECTORY ${COFFRELUNE_MANUAL} DESTINATION ${share}/coffrelune)
install(FILES ${files}/linux/coffrelune.desktop DESTINATION ${share}/applications)
# The day of the release, as the changes are told.
file(STRINGS ${PROJECT_SOURCE_DIR}/CHANGELOG.md released REGEX "^## \\[${PROJECT_VERSION}\\] - ")
string(REGEX REPLACE ".* - " "" COFFRELUNE_RELEASE_DATE "${released}")
configure_file(${files}/linux/metainfo.xml.in ${made}/org.coffrelune.Coffrelune.metainfo.xml @ONLY)
install(FILES ${made}/org.coffrelune.Coffrelune.metainfo.xml DESTINATION ${share}/metainfo)
install(FILES ${files}/linux/coffrelune-console.bash
        DESTINATION ${share}/bash-completion/completions RENAME coffrelune-console)
install(FILES ${files}/linux/copyright DESTINATION ${documents})

# The picture in the sizes of the icon theme, and as it was drawn.
find_program(RSVG_CONVERT rsvg-convert REQUIRED)
set(picture ${PROJECT_SOURCE_DIR}/assets/icons/programme.svg)
foreach(size 16 22 24 32 48 64 128 256)
  set(icon ${made}/coffrelune-${size}.png)
  add_custom_command(
    OUTPUT ${icon}
    COMMAND ${RSVG_CONVERT} --width=${size} --height=${size} ${picture} -o ${icon}
    DEPENDS ${picture}
    VERBATIM)
  list(APPEND made_files ${icon})
  install(FILES ${icon} DESTINATION ${share}/icons/hicolor/${size}x${size}/apps RENAME coffrelune.png)
endforeach()
install(FILES ${picture} DESTINATION ${share}/icons/hicolor/scalable/apps RENAME coffrelune.svg)

# Without a name and a time inside, so that the same text gives the same bytes.
function(coffrelune_compressed source name destination)
  set(output ${made}/${name})
  add_custom_command(
    OUTPUT ${output}
    COMMAND sh -c "gzip -9 -n < \"$1\" > \"$2\"" gzip ${source} ${output}
    DEPENDS ${source}
    VERBATIM)
  set(made_files ${made_files} ${output} PARENT_SCOPE)
  install(FILES ${output} DESTINATION ${destination} RENAME ${ARGV3})
endfunction()
foreach(page coffrelune coffrelune-console)
  coffrelune_compressed(${files}/linux/man/fr/${page}.1 fr-${page}.1.gz ${share}/man/fr/man1 ${page}.1.gz)
  coffrelune_compressed(${files}/linux/man/en/${page}.1 en-${page}.1.gz ${share}/man/man1 ${page}.1.gz)
endforeach()
configure_file(${files}/linux/changelog.in ${made}/changelog @ONLY)
coffrelune_compressed(${made}/changelog changelog.gz ${documents} changelog.gz)
add_custom_target(package_files ALL DEPENDS ${made_files})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME coffrelune)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Coffrelune developers <coffrelune@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "back up, restore and compare directories between two disks")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "back up, restore and compare directories between two disks
 Coffrelune copies directories to a second disk, a USB key or a network share,
 compares them, verifies their contents and puts them back. The copy is an
 ordinary tree of files, readable without Coffrelune.
 .
 The package holds a desktop program and a program for terminals, cron and
 systemd timers. Both speak French.")
include(CPack)
