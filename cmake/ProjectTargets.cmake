# add_std_library(name sources...): a library that knows the standard library only.
function(add_std_library name)
    add_library(${name} STATIC ${ARGN})
    target_link_libraries(${name} PUBLIC project_options PRIVATE strict_conversions)
    use_precompiled_headers(${name} standard)
endfunction()

# add_qt_library(name sources...): a library on Qt Core, without a widget.
function(add_qt_library name)
    add_library(${name} STATIC ${ARGN})
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_link_libraries(${name} PUBLIC project_options qt_options Qt6::Core)
    use_precompiled_headers(${name} qt)
endfunction()

# add_window_library(name sources...): windows.
function(add_window_library name)
    add_library(${name} STATIC ${ARGN})
    set_target_properties(${name} PROPERTIES AUTOMOC ON)
    target_link_libraries(${name} PUBLIC project_options qt_options Qt6::Widgets)
    use_precompiled_headers(${name} window)
endfunction()

# add_unit_test(name SOURCES file... LIBS lib... [TIMEOUT seconds]): a GoogleTest program named
# `name`; each of its tests is one ctest. Windows are drawn offscreen; the locale and the time
# zone are fixed so that no machine's setting matters. DISPLAY: each test has a virtual display and
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
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
        target_link_libraries(${name} PRIVATE qt_options Qt6::Widgets Qt6::Test widget_test_main)
        use_precompiled_headers(${name} window_test)
    elseif(T_QT)
        set_target_properties(${name} PROPERTIES AUTOMOC ON)
        target_link_libraries(${name} PRIVATE qt_options Qt6::Core Qt6::Test GTest::gtest_main)
        use_precompiled_headers(${name} qt_test)
    else()
        target_link_libraries(${name} PRIVATE GTest::gtest_main)
        use_precompiled_headers(${name} test)
    endif()
    # A launcher and not the tests' ENVIRONMENT: discovery loses all but the first of several variables.
    set(launcher ${CMAKE_COMMAND} -E env LC_ALL=C.UTF-8 TZ=UTC0 TAVOLO_SHARED=${CMAKE_SOURCE_DIR}/../shared)
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
