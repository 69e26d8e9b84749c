# What an install puts where, and the Debian package CPack makes of it
# (scripts/package builds it; `cpack -G DEB` in a build folder does the same).
#
#   bin/                        kyt-console, kyt-analyser-sim, kyt-tool and the
#                               launcher kyt-console-start (the menu entry's command)
#   share/kyt-console/help/     the help texts (src/help/CMakeLists.txt)
#   share/applications/         the menu entry
#   share/icons/hicolor/        the icon, scalable and as PNG in six sizes
#   share/doc/kyt-console/      copyright and changelog
#   share/man/man1/             the manual pages
include(GNUInstallDirs)

install(TARGETS kyt-console kyt-analyser-sim kyt-tool RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(PROGRAMS packaging/kyt-console-start DESTINATION ${CMAKE_INSTALL_BINDIR})
install(FILES packaging/kyt-console.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES packaging/icons/kyt-console.svg DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps)
foreach(size 16 32 48 64 128 256)
  install(FILES packaging/icons/kyt-console-${size}.png
          DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor/${size}x${size}/apps
          RENAME kyt-console.png)
endforeach()

set(kyt_maintainer "Corvane Systems Inc. <support@example.com>")
set(kyt_docdir ${CMAKE_INSTALL_DATADIR}/doc/kyt-console)

# The changelog and the copyright a Debian package carries are dated by
# SOURCE_DATE_EPOCH when it is set (scripts/package sets it to the last
# commit's time): they tell when the sources changed, not when they were built.
string(TIMESTAMP kyt_changelog_date "%a, %d %b %Y %H:%M:%S +0000" UTC)
string(TIMESTAMP KYT_COPYRIGHT_YEAR "%Y" UTC)
configure_file(packaging/copyright.in ${PROJECT_BINARY_DIR}/packaging/copyright @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/packaging/copyright DESTINATION ${kyt_docdir})
file(WRITE ${PROJECT_BINARY_DIR}/packaging/changelog
  "kyt-console (${PROJECT_VERSION}) stable; urgency=medium\n\n"
  "  * Kyt Console ${PROJECT_VERSION}.\n\n"
  " -- ${kyt_maintainer}  ${kyt_changelog_date}\n")

# Installs FILE gzip-compressed (without name and time in the header, as
# Debian wants its changelogs and manual pages) into DESTINATION.
function(kyt_install_gzipped file destination)
  get_filename_component(name ${file} NAME)
  set(gz ${PROJECT_BINARY_DIR}/packaging/${name}.gz)
  execute_process(COMMAND gzip -n -9 -c ${file} OUTPUT_FILE ${gz} RESULT_VARIABLE failed)
  if(failed)
    message(FATAL_ERROR "gzip could not compress ${file}")
  endif()
  install(FILES ${gz} DESTINATION ${destination})
  set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
endfunction()

kyt_install_gzipped(${PROJECT_BINARY_DIR}/packaging/changelog ${kyt_docdir})
foreach(page kyt-console kyt-console-start kyt-analyser-sim kyt-tool)
  kyt_install_gzipped(${PROJECT_SOURCE_DIR}/packaging/man/${page}.1 ${CMAKE_INSTALL_MANDIR}/man1)
endforeach()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kyt-console)
set(CPACK_PACKAGE_VENDOR "Corvane Systems Inc.")
set(CPACK_PACKAGE_CONTACT "${kyt_maintainer}")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "console for a four-channel infusion device analyser")
set(CPACK_PACKAGE_DESCRIPTION
"Kyt Console is the desktop companion of a four-channel infusion device
analyser, linked to the computer by a serial line. It downloads the
analyser's summaries and data logs, runs single-rate and occlusion tests
live with scrolling graphs, keeps a test header for every report, edits,
prints and saves the reports, converts logs to spreadsheet files, graphs
stored logs and computes the trumpet curve of a pump's flow error.

The package also holds kyt-analyser-sim, which plays the analyser on a
pseudo-terminal, and kyt-tool, the console's file work on the command line.")
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "${kyt_maintainer}")
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://www.example.com")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# What the libraries the programs link do not tell: Qt loads its platform and
# image-format plugins at run time (on Debian 12 the X11 platform plugin and
# the JPEG writer the image saving uses come with libqt6gui6, which the
# console links, the other platform plugins with qt6-qpa-plugins), and the
# main window, the charts and the printouts draw in the Liberation fonts (by
# name, or as fontconfig's answer to Arial and Courier New).
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins, fonts-liberation")

include(CPack)
