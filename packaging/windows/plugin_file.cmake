# Filigrane.aex: a DLL that needs nothing beside it, gives out its entry point alone and carries its property list.
set(windows_files ${CMAKE_CURRENT_BINARY_DIR}/windows)
file(MAKE_DIRECTORY ${windows_files})
filigrane_property_list_file(windows ${windows_files}/Filigrane.pipl)
configure_file(${PROJECT_SOURCE_DIR}/packaging/windows/Filigrane.rc ${windows_files}/Filigrane.rc COPYONLY)
set_source_files_properties(${windows_files}/Filigrane.rc PROPERTIES OBJECT_DEPENDS ${windows_files}/Filigrane.pipl
    INCLUDE_DIRECTORIES ${windows_files})
enable_language(RC)
add_dependencies(Filigrane filigrane_property_list_file)
target_sources(Filigrane PRIVATE ${windows_files}/Filigrane.rc)
set_target_properties(Filigrane PROPERTIES SUFFIX ".aex")
