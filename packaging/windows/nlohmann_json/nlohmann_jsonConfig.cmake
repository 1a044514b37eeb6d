# nlohmann-json for a cross build: its headers by themselves, for the folder that they stand in on Debian has the build
# machine's C library as well.
set(json_headers /usr/include/nlohmann CACHE PATH "The folder of json.hpp")
if(NOT EXISTS ${json_headers}/json.hpp)
    message(FATAL_ERROR "${json_headers} has no json.hpp: install nlohmann-json3-dev")
endif()
set(json_alone ${CMAKE_BINARY_DIR}/json)
file(MAKE_DIRECTORY ${json_alone})
file(CREATE_LINK ${json_headers} ${json_alone}/nlohmann SYMBOLIC)
add_library(nlohmann_json::nlohmann_json INTERFACE IMPORTED)
set_target_properties(nlohmann_json::nlohmann_json PROPERTIES INTERFACE_INCLUDE_DIRECTORIES ${json_alone})
