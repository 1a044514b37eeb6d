# Filigrane.plugin: a bundle whose resource file and Info.plist tell hosts what it is before they load its code. It is
# the same for Intel and Arm; with CMAKE_OSX_ARCHITECTURES="arm64;x86_64" its one binary is for both.
set(macos_files ${CMAKE_CURRENT_BINARY_DIR}/macos)
file(MAKE_DIRECTORY ${macos_files})
filigrane_property_list_file(macos ${macos_files}/Filigrane.rsrc)
file(WRITE ${macos_files}/PkgInfo "eFKTFXTC")
add_dependencies(Filigrane filigrane_property_list_file)
target_sources(Filigrane PRIVATE ${macos_files}/Filigrane.rsrc ${macos_files}/PkgInfo)
set_source_files_properties(${macos_files}/Filigrane.rsrc PROPERTIES MACOSX_PACKAGE_LOCATION Resources)
set_source_files_properties(${macos_files}/PkgInfo PROPERTIES MACOSX_PACKAGE_LOCATION .)
set_target_properties(Filigrane PROPERTIES BUNDLE TRUE BUNDLE_EXTENSION plugin
    MACOSX_BUNDLE_INFO_PLIST ${PROJECT_SOURCE_DIR}/packaging/macos/Info.plist.in)
target_link_options(Filigrane PRIVATE -Wl,-exported_symbol,_PluginEntry)
