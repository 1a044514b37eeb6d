# GoogleTest for a cross build, from the source that Debian has of it: the targets of the package itself, for tests that
# ./dev test windows runs, and a plain filigrane_test for them.
set(googletest /usr/src/googletest)
add_library(gtest_from_source STATIC EXCLUDE_FROM_ALL ${googletest}/googletest/src/gtest-all.cc
    ${googletest}/googletest/src/gtest_main.cc ${googletest}/googlemock/src/gmock-all.cc)
foreach(part googletest googlemock)
    target_include_directories(gtest_from_source SYSTEM PUBLIC ${googletest}/${part}/include
        PRIVATE ${googletest}/${part})
endforeach()
foreach(part gtest gtest_main gmock)
    add_library(GTest::${part} ALIAS gtest_from_source)
endforeach()

function(filigrane_test name)
    cmake_parse_arguments(arg "" "" "LIBS" ${ARGN})
    add_executable(${name} EXCLUDE_FROM_ALL ${arg_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE ${arg_LIBS} gtest_from_source filigrane_warnings)
endfunction()
