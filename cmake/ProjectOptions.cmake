# project_options: language level, warnings and sanitizers of every target.
# strict_conversions: in addition, for the libraries that do not know Qt.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
# Says so to the linker, too, where it knows such programs.
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    # Precompiled headers need the first two; without hash_dir a second checkout shares the cache.
    set(launcher ${CMAKE_COMMAND} -E env CCACHE_SLOPPINESS=pch_defines,time_macros
        CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1 ${CCACHE_PROGRAM})
    set(CMAKE_CXX_COMPILER_LAUNCHER ${launcher})
    set(CMAKE_C_COMPILER_LAUNCHER ${launcher})
endif()

# The fast linker where there is one: some sixty programs of tests are linked.
find_program(MOLD_PROGRAM mold)
if(MOLD_PROGRAM AND NOT WIN32)  # which it does not link for
    add_link_options(-fuse-ld=mold)
endif()

add_library(project_options INTERFACE)
target_compile_options(project_options INTERFACE
    -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wformat=2
    $<$<COMPILE_LANGUAGE:CXX>:-Wold-style-cast>)
# When gcc 12 optimizes it sees overlapping copies in `"text" + std::string` (GCC bug 105651), takes the inside of an empty
# std::optional for an uninitialized variable, and reads negative sizes into comparisons of vectors.
set(gcc_release $<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>,$<COMPILE_LANGUAGE:CXX>>)
foreach(wrong_warning IN ITEMS restrict maybe-uninitialized stringop-overread stringop-overflow array-bounds)
    target_compile_options(project_options INTERFACE $<${gcc_release}:-Wno-${wrong_warning}>)
endforeach()
# The compiler's garbage collector starts at 128 MB, which a precompiled header comes near by itself; it then frees little
# and takes a tenth of the time. A file of this project takes 600 MB without it.
target_compile_options(project_options INTERFACE
    $<$<COMPILE_LANG_AND_ID:CXX,GNU>:--param=ggc-min-heapsize=1048576>)
if(TAVOLO_SANITIZE)
    target_compile_options(project_options INTERFACE -fsanitize=${TAVOLO_SANITIZE}
        -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(project_options INTERFACE -fsanitize=${TAVOLO_SANITIZE})
endif()
if(TAVOLO_FUZZ)
    # Coverage for libFuzzer; the tests of this build carry it along, so that both are linked of the same objects.
    target_compile_options(project_options INTERFACE -fsanitize=fuzzer-no-link)
endif()
# A compiler cache hands out headers precompiled at another time.
target_compile_options(project_options INTERFACE
    "$<$<COMPILE_LANG_AND_ID:CXX,Clang>:SHELL:-Xclang -fno-pch-timestamp>")

add_library(strict_conversions INTERFACE)
target_compile_options(strict_conversions INTERFACE -Wconversion -Wsign-conversion)

# qt_options: how the project uses Qt.
if(TAVOLO_GUI)
    find_package(Qt6 6.4 REQUIRED COMPONENTS Core Gui Widgets Network Test)
    if(NOT WIN32)  # which has its own for what the first two are for; with the third the build records the artwork
        find_package(Qt6 6.4 REQUIRED COMPONENTS DBus Multimedia Svg)
    endif()
    add_library(qt_options INTERFACE)
    target_compile_definitions(qt_options INTERFACE QT_NO_CAST_FROM_ASCII QT_NO_CAST_TO_ASCII
        QT_NO_FOREACH QT_NO_NARROWING_CONVERSIONS_IN_CONNECT QT_NO_KEYWORDS)
endif()
