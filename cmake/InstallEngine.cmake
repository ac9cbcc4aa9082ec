# The engine by itself: `cmake --install build/release --component tavolo_jet --prefix DIR` puts the libraries, the headers that a
# program needs and a config package there, and find_package(tavolo_jet) finds it. Not part of what is installed as the program.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(engine_libraries base jet_base jet_values jet_text jet_pages jet_rows jet_index jet_tables jet_check jet_repair
    jet_sql_syntax jet_sql_functions jet_sql_expressions jet_sql_plans jet_sql_statements jet platform_files)
# What connection.h, database.h and check.h include, and the file system of this system.
set(engine_headers base/byte_reader.h base/byte_writer.h base/file_names.h base/status.h base/unicode.h
    jet/check/check.h jet/connection.h jet/held_rows.h jet/ids.h jet/pages/commit_notes.h jet/pages/definition_layout.h
    jet/pages/file_system.h jet/pages/format.h jet/pages/page_store.h jet/recordset.h jet/repair/compact.h jet/repair/repair.h jet/rows/table_definition.h
    jet/tables/change_note.h jet/tables/database.h jet/tables/row_rules.h jet/text/text_codec.h jet/values/schema.h jet/values/value.h
    platform/file_system.h)
set(engine_component COMPONENT tavolo_jet EXCLUDE_FROM_ALL)

install(TARGETS ${engine_libraries} EXPORT tavolo_jet
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}/tavolo ${engine_component}
    INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tavolo)
foreach(header IN LISTS engine_headers)
    get_filename_component(folder ${header} DIRECTORY)
    install(FILES src/${header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/tavolo/${folder} ${engine_component})
endforeach()

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/tavolo_jet)
install(EXPORT tavolo_jet NAMESPACE tavolo_jet:: FILE tavolo_jet-targets.cmake DESTINATION ${package_folder} ${engine_component})
write_basic_package_version_file(${CMAKE_BINARY_DIR}/tavolo_jet-config-version.cmake COMPATIBILITY SameMajorVersion)
file(WRITE ${CMAKE_BINARY_DIR}/tavolo_jet-config.cmake
    "include(CMakeFindDependencyMacro)\nfind_dependency(Threads)\ninclude(\${CMAKE_CURRENT_LIST_DIR}/tavolo_jet-targets.cmake)\n")
install(FILES ${CMAKE_BINARY_DIR}/tavolo_jet-config.cmake ${CMAKE_BINARY_DIR}/tavolo_jet-config-version.cmake
    DESTINATION ${package_folder} ${engine_component})
