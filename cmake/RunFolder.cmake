# Lays the files that an executable expects beside itself into its folder. Once the library paths point at the
# executable's folder, Qt finds neither SQLite nor JPEG unless "plugins" is there; a link follows Qt's updates.
get_target_property(qt_core_library Qt6::Core LOCATION)
get_filename_component(qt_library_folder "${qt_core_library}" DIRECTORY)
find_path(BAHNITO_QT_PLUGINS sqldrivers
  PATHS "${qt_library_folder}/qt6/plugins" "${qt_library_folder}/../plugins" REQUIRED NO_DEFAULT_PATH)
find_path(BAHNITO_QT_TRANSLATIONS qtbase_de.qm
  PATHS /usr/share/qt6/translations "${qt_library_folder}/../translations" REQUIRED NO_DEFAULT_PATH)

function(bahnito_run_folder folder)
  file(MAKE_DIRECTORY "${folder}")
  file(CREATE_LINK "${BAHNITO_QT_PLUGINS}" "${folder}/plugins" SYMBOLIC)
  file(CREATE_LINK "${PROJECT_SOURCE_DIR}/images" "${folder}/images" SYMBOLIC)
  file(CREATE_LINK "${PROJECT_SOURCE_DIR}/images/Lok.ico" "${folder}/Lok.ico" SYMBOLIC)
endfunction()
