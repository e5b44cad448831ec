# Installs the program with everything around it, and lets cpack make a Debian package of it (scripts/package).
# The program lies in a folder of its own, because it looks for its plug-ins beside itself only; what a user calls is
# the launcher, which enters the folder of the catalogue first.
include(GNUInstallDirs)
set(CMAKE_SKIP_INSTALL_ALL_DEPENDENCY ON) # tests and samples are no part of the package

set(BAHNITO_HOMEPAGE "https://bahnito.example" CACHE STRING "Where the metainfo says that the program is at home")
set(BAHNITO_RELEASE_DATE "2026-11-20")
set(packaging "${PROJECT_SOURCE_DIR}/packaging")
set(made "${CMAKE_CURRENT_BINARY_DIR}/packaging")
set(doc_folder "${CMAKE_INSTALL_DATAROOTDIR}/doc/bahnito")
set(program_folder lib/bahnito)

install(TARGETS bahnito RUNTIME DESTINATION "${program_folder}")
install(PROGRAMS "${packaging}/bahnito" DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(DIRECTORY "${PROJECT_SOURCE_DIR}/images" DESTINATION "${CMAKE_INSTALL_DATADIR}/bahnito"
  FILES_MATCHING PATTERN "*.png" PATTERN src EXCLUDE)
install(FILES "${PROJECT_SOURCE_DIR}/images/Lok.ico" DESTINATION "${CMAKE_INSTALL_DATADIR}/bahnito")

# Relative, so that it also leads to the plug-ins of the root in which the package is unpacked.
file(RELATIVE_PATH plugins_from_program "/usr/${program_folder}" "${BAHNITO_QT_PLUGINS}")
install(CODE "
  set(folder \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/${program_folder}\")
  file(CREATE_LINK \"${plugins_from_program}\" \"\${folder}/plugins\" SYMBOLIC)")

configure_file("${packaging}/de.bahnito.bahnito.metainfo.xml.in" "${made}/de.bahnito.bahnito.metainfo.xml" @ONLY)
install(FILES "${made}/de.bahnito.bahnito.metainfo.xml" DESTINATION "${CMAKE_INSTALL_DATADIR}/metainfo")
install(FILES "${packaging}/de.bahnito.bahnito.desktop" DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
set(icons "${CMAKE_INSTALL_DATADIR}/icons/hicolor")
foreach(size 16 22 24 32 48 64 128 256 512)
  install(FILES "${packaging}/icons/${size}.png" DESTINATION "${icons}/${size}x${size}/apps" RENAME de.bahnito.bahnito.png)
endforeach()
install(FILES "${PROJECT_SOURCE_DIR}/images/src/Lok.svg" DESTINATION "${icons}/scalable/apps"
  RENAME de.bahnito.bahnito.svg)

# bahnito_compressed(source target): packed as Debian wants it, without a time stamp, so that it is always the same.
find_program(GZIP_PROGRAM gzip REQUIRED)
function(bahnito_compressed source target)
  add_custom_command(OUTPUT "${made}/${target}"
    COMMAND sh -c "mkdir -p \"$(dirname \"$2\")\" && \"$3\" -9nc \"$1\" >\"$2\"" sh "${source}" "${made}/${target}"
    "${GZIP_PROGRAM}"
    DEPENDS "${source}" VERBATIM)
endfunction()
bahnito_compressed("${packaging}/man/bahnito.1" bahnito.1.gz)
bahnito_compressed("${packaging}/man/bahnito.de.1" de/bahnito.1.gz)
bahnito_compressed("${packaging}/debian/changelog" changelog.gz)
add_custom_target(packed_papers ALL
  DEPENDS "${made}/bahnito.1.gz" "${made}/de/bahnito.1.gz" "${made}/changelog.gz")
install(FILES "${made}/bahnito.1.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")
install(FILES "${made}/de/bahnito.1.gz" DESTINATION "${CMAKE_INSTALL_MANDIR}/de/man1")
install(FILES "${made}/changelog.gz" "${packaging}/debian/copyright" DESTINATION "${doc_folder}")

# Who only builds and tests the program needs no Asciidoctor; who installs it gets the manual.
find_program(BAHNITO_ASCIIDOCTOR asciidoctor)
set(manual "${PROJECT_SOURCE_DIR}/docs/manual")
if(BAHNITO_ASCIIDOCTOR)
  add_custom_command(OUTPUT "${made}/html/index.html"
    COMMAND "${BAHNITO_ASCIIDOCTOR}" --failure-level=WARN --attribute reproducible
    --attribute imagesdir=images --attribute "bahnito-version=${PROJECT_VERSION}" --out-file "${made}/html/index.html" "${manual}/handbuch.adoc"
    DEPENDS "${manual}/handbuch.adoc" "${manual}/handbuch.css" VERBATIM)
  add_custom_target(manual ALL DEPENDS "${made}/html/index.html")
  install(FILES "${made}/html/index.html" DESTINATION "${doc_folder}/html")
  install(DIRECTORY "${PROJECT_SOURCE_DIR}/docs/images" DESTINATION "${doc_folder}/html" FILES_MATCHING PATTERN "*.png")
  install(FILES "${packaging}/debian/doc-base" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc-base" RENAME bahnito)
else()
  install(CODE "message(FATAL_ERROR \"The manual was not made: asciidoctor was missing when cmake was run.\")")
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME bahnito)
set(CPACK_PACKAGE_CONTACT "Bahnito Maintainers <bahnito@example.org>")
set(CPACK_PACKAGE_HOMEPAGE_URL "${BAHNITO_HOMEPAGE}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "catalogue of your own railway photographs")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Bahnito keeps a private collection of railway photographs. Each entry tells
which locomotive was seen where and when, with a comment and up to six
photographs. Entries belong to a class and classes to a group; the entries of
a class are looked through page by page, the photographs beside the details.

A catalogue is a folder with a database and reduced copies of the
photographs; the originals are never changed. Nothing is sent anywhere.
The user interface and the manual are German.")
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
  OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# The libraries are found by themselves, and libqt6gui6 brings the JPEG plug-in; nobody names the driver and the fonts.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
  "libqt6sql6-sqlite, fonts-open-sans, fonts-liberation, fonts-dejavu-core")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils, zenity | kdialog | x11-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "qt6-wayland")
include(CPack)
