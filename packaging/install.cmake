# What is installed, and where; and the packages made of it. Whatever is not built in a configuration is left out.
if(WIN32)
    # One folder that is unpacked anywhere.
    set(plugin_place .)
    set(looks_place presets)
    set(manual_place .)
    set(bundle_place .)
else()
    set(plugin_place lib/filigrane)
    set(looks_place share/filigrane/presets)
    set(manual_place share/doc/filigrane)
    set(bundle_place OFX/Plugins)
endif()

# The effect, and what is to load it. The target `installed` builds all of it and nothing else.
install(TARGETS Filigrane LIBRARY DESTINATION ${plugin_place})
add_custom_target(installed DEPENDS Filigrane)
if(TARGET filigrane)
    install(TARGETS filigrane RUNTIME DESTINATION bin)
    add_dependencies(installed filigrane)
endif()
foreach(adapter frei0r_filter frei0r_generator)
    if(TARGET ${adapter})
        install(TARGETS ${adapter} LIBRARY DESTINATION lib/frei0r-1)
        add_dependencies(installed ${adapter})
    endif()
endforeach()
if(TARGET frei0r_filter)
    # What editors show of its parameters. Flowblade has one file for all filters: ours is for a person to copy from.
    set(editors adapters/frei0r/editors)
    install(DIRECTORY ${editors}/kdenlive/ DESTINATION share/kdenlive)
    install(DIRECTORY ${editors}/shotcut/ DESTINATION share/shotcut/qml/filters)
    install(DIRECTORY ${editors}/flowblade DESTINATION share/filigrane)
endif()
if(TARGET filigrane_ofx)
    # A bundle is used from wherever it lies: it has the effect and the looks inside.
    get_target_property(ofx_folder filigrane_ofx LIBRARY_OUTPUT_DIRECTORY)
    file(RELATIVE_PATH ofx_folder ${PROJECT_BINARY_DIR} ${ofx_folder})
    install(TARGETS filigrane_ofx Filigrane LIBRARY DESTINATION ${bundle_place}/${ofx_folder})
    install(DIRECTORY ${PROJECT_BINARY_DIR}/Filigrane.ofx.bundle/Contents/Resources
        DESTINATION ${bundle_place}/Filigrane.ofx.bundle/Contents)
    add_dependencies(installed filigrane_ofx)
endif()

# Looks and the manual.
install(DIRECTORY samples/presets/ DESTINATION ${looks_place} FILES_MATCHING PATTERN *.json)
install(DIRECTORY docs DESTINATION ${manual_place}
    FILES_MATCHING PATTERN *.md PATTERN *.png PATTERN *.svg PATTERN *.jpg PATTERN *.gif)
install(FILES README.md CHANGELOG.md DESTINATION ${manual_place})
if(WIN32)
    install(FILES LICENSE DESTINATION ${manual_place} RENAME LICENSE.txt)
else()
    install(FILES packaging/debian/copyright DESTINATION ${manual_place})
    # Compressed, without a time, as Debian wants them.
    function(install_compressed file name folder)
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
        execute_process(COMMAND gzip -9 -n -c ${PROJECT_SOURCE_DIR}/${file}
            OUTPUT_FILE ${PROJECT_BINARY_DIR}/${name} COMMAND_ERROR_IS_FATAL ANY)
        install(FILES ${PROJECT_BINARY_DIR}/${name} DESTINATION ${folder})
    endfunction()
    install_compressed(packaging/debian/changelog changelog.gz ${manual_place})
    install_compressed(packaging/debian/filigrane.1 filigrane.1.gz share/man/man1)
endif()

# Packages, which `./dev package` makes in the build made for them.
set(CPACK_PACKAGE_NAME filigrane)
set(CPACK_PACKAGE_VENDOR "The Filigrane authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "video effect that draws a field of hand-drawn lines")
set(CPACK_PACKAGE_DESCRIPTION "Draws a field of lines over a picture or over nothing: woven, rippling,
growing, bent where they cross, each a little different from the next. The
same settings give the same picture every time.
.
This package has the command line tool and its looks, and the effect as a
plug-in of the After Effects effect API, of frei0r and of OpenFX.")
set(CPACK_PACKAGE_CONTACT "The Filigrane authors <maintainers@filigrane.invalid>")
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_CHECKSUM SHA256)
if(WIN32)
    set(CPACK_GENERATOR ZIP)
    set(CPACK_PACKAGE_FILE_NAME filigrane-${PROJECT_VERSION}-windows-x64)
else()
    set(CPACK_GENERATOR TGZ DEB)
    set(CPACK_PACKAGE_FILE_NAME filigrane-${PROJECT_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR})
    set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
    set(CPACK_DEBIAN_PACKAGE_SECTION video)
    set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
    set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
    set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
    set(CPACK_DEBIAN_PACKAGE_SUGGESTS "ffmpeg, melt, kdenlive")
    set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
endif()
include(CPack)
