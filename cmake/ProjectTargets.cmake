# compile_several_files_at_once(count): in this folder and those below it, where TAVOLO_UNITY says so. The debug preset compiles each
# file by itself, for quick turns; clang-tidy does, too. Files that are not to meet have SKIP_UNITY_BUILD_INCLUSION.
macro(compile_several_files_at_once count)
    set(CMAKE_UNITY_BUILD ${TAVOLO_UNITY})
    set(CMAKE_UNITY_BUILD_BATCH_SIZE ${count})
    if(TAVOLO_UNITY AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # gcc takes a file that is included for a header, which should name nothing that is local to a file.
        add_compile_options($<$<COMPILE_LANGUAGE:CXX>:-Wno-subobject-linkage>)
    endif()
endmacro()

# room_headers(target [header...]): who links `target` may include the headers of its folder, those named or all, as
# "folder/header.h", and those of no other folder. A folder of links in the build tree stands for the room; a folder inside of it
# that is no room of its own belongs to it.
function(room_headers target)
    file(RELATIVE_PATH room ${CMAKE_SOURCE_DIR}/src ${CMAKE_CURRENT_SOURCE_DIR})
    set(tree ${CMAKE_BINARY_DIR}/rooms/${target})
    file(REMOVE_RECURSE ${tree})
    file(MAKE_DIRECTORY ${tree}/${room})
    set(entries ${ARGN})
    list(TRANSFORM entries PREPEND ${CMAKE_CURRENT_SOURCE_DIR}/)
    if(NOT entries)
        file(GLOB entries CONFIGURE_DEPENDS LIST_DIRECTORIES true ${CMAKE_CURRENT_SOURCE_DIR}/*)
    endif()
    foreach(entry IN LISTS entries)
        get_filename_component(name ${entry} NAME)
        if(name MATCHES "\\.h$" OR (IS_DIRECTORY ${entry} AND NOT EXISTS ${entry}/CMakeLists.txt))
            file(CREATE_LINK ${entry} ${tree}/${room}/${name} SYMBOLIC)
        endif()
    endforeach()
    get_target_property(type ${target} TYPE)
    set(scope PUBLIC)
    if(type STREQUAL "INTERFACE_LIBRARY")
        set(scope INTERFACE)
    endif()
    target_include_directories(${target} ${scope} $<BUILD_INTERFACE:${tree}>)
endfunction()

# add_std_library(name sources... [HEADERS header...]): a library that knows the standard library only.
function(add_std_library name)
    cmake_parse_arguments(L "" "" "HEADERS" ${ARGN})
    add_library(${name} STATIC ${L_UNPARSED_ARGUMENTS})
    room_headers(${name} ${L_HEADERS})
    # How this project is compiled is nothing to those who link the installed library.
    target_link_libraries(${name} PUBLIC $<BUILD_INTERFACE:project_options> PRIVATE $<BUILD_INTERFACE:strict_conversions>)
    use_precompiled_headers(${name} standard)
endfunction()

# add_qt_library(name [MOC] sources...): a library on Qt Core, without a widget. MOC: it has a Q_OBJECT.
function(add_qt_library name)
    cmake_parse_arguments(L "MOC" "" "" ${ARGN})
    add_library(${name} STATIC ${L_UNPARSED_ARGUMENTS})
    room_headers(${name})
    set_target_properties(${name} PROPERTIES AUTOMOC ${L_MOC})
    target_link_libraries(${name} PUBLIC project_options qt_options Qt6::Core)
    use_precompiled_headers(${name} qt)
endfunction()

# add_window_library(name sources...): windows.
function(add_window_library name)
    add_library(${name} STATIC ${ARGN})
    room_headers(${name})
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_link_libraries(${name} PUBLIC project_options qt_options Qt6::Widgets)
    use_precompiled_headers(${name} window)
endfunction()

# add_host_program(name sources...): a program that the build itself runs. For another system it is not built but taken from
# TAVOLO_HOST_PROGRAMS, the folder "bin" of a build for this machine.
function(add_host_program name)
    if(NOT CMAKE_CROSSCOMPILING)
        add_executable(${name} ${ARGN})
        return()
    endif()
    add_executable(${name} IMPORTED GLOBAL)
    set_target_properties(${name} PROPERTIES IMPORTED_LOCATION ${TAVOLO_HOST_PROGRAMS}/${name})
endfunction()

# add_unit_test(name SOURCES file... LIBS lib... [TIMEOUT seconds]): a GoogleTest program named
# `name`; each of its tests is one ctest. Windows are drawn offscreen; the locale and the time
# zone are fixed so that no machine's setting matters; TAVOLO_SHARED is the caller's. DISPLAY: each test has a virtual display and
# a window manager of its own instead (tests/support/with_display.sh) and carries the label "display". SOUND: each test has a sound
# server of its own (tests/support/with_sound_server.sh).
function(add_unit_test name)
    cmake_parse_arguments(T "QT;WIDGETS;DISPLAY;SOUND" "TIMEOUT" "SOURCES;LIBS" ${ARGN})
    if(NOT T_TIMEOUT)
        set(T_TIMEOUT 120)
    endif()
    add_executable(${name} ${T_SOURCES})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    target_link_libraries(${name} PRIVATE project_options ${T_LIBS} GTest::gtest GTest::gmock)
    if(T_WIDGETS)
        target_link_libraries(${name} PRIVATE qt_options Qt6::Widgets Qt6::Test widget_test_main)
        use_precompiled_headers(${name} window_test)
    elseif(T_QT)
        target_link_libraries(${name} PRIVATE qt_options Qt6::Core Qt6::Test GTest::gtest_main)
        use_precompiled_headers(${name} qt_test)
    else()
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
        use_precompiled_headers(${name} test)
    endif()
    if(WIN32)
        # Through Wine, where every start of a program takes a while: all tests of a program are one ctest.
        set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR ${CMAKE_SOURCE_DIR}/tests/support/with_wine.sh)
        add_test(NAME ${name} COMMAND ${name})
        # What may take long comes first, so that nobody waits for it in the end.
        set_tests_properties(${name} PROPERTIES TIMEOUT 900 COST ${T_TIMEOUT} FAIL_REGULAR_EXPRESSION "\\[  SKIPPED \\]"
            ENVIRONMENT "WINEPREFIX=${CMAKE_BINARY_DIR}/wine;TAVOLO_FONTS=Z:/usr/share/fonts/truetype/dejavu")
        if(T_WIDGETS)
            qt_import_plugins(${name} INCLUDE Qt6::QOffscreenIntegrationPlugin)
        endif()
        return()
    endif()
    # A launcher and not the tests' ENVIRONMENT: discovery loses all but the first of several variables.
    set(launcher ${CMAKE_COMMAND} -E env LC_ALL=C.UTF-8 TZ=UTC0)
    set(labels)
    if(T_DISPLAY)
        set(labels LABELS display)
        list(APPEND launcher QT_QPA_PLATFORM=xcb ${CMAKE_SOURCE_DIR}/tests/support/with_display.sh)
    elseif(T_SOUND)
        list(APPEND launcher QT_QPA_PLATFORM=offscreen ${CMAKE_SOURCE_DIR}/tests/support/with_sound_server.sh)
    else()
        list(APPEND launcher QT_QPA_PLATFORM=offscreen)
    endif()
    set_target_properties(${name} PROPERTIES CROSSCOMPILING_EMULATOR "${launcher}")
    gtest_discover_tests(${name} DISCOVERY_TIMEOUT 60 DISCOVERY_MODE PRE_TEST
        PROPERTIES TIMEOUT ${T_TIMEOUT} ${labels})
endfunction()
