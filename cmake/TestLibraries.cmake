# GTest::gtest and GTest::gmock: the system's, or for Windows built of the sources that Debian brings along (googletest).
include(GoogleTest)
if(NOT WIN32)
    find_package(GTest REQUIRED)
    return()
endif()

set(INSTALL_GTEST OFF)
set(warnings_are_errors ${CMAKE_COMPILE_WARNING_AS_ERROR})
set(CMAKE_COMPILE_WARNING_AS_ERROR OFF)  # they are others'
add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
set(CMAKE_COMPILE_WARNING_AS_ERROR ${warnings_are_errors})
