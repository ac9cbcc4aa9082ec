# One precompiled header for each kind of target, made once per build and shared by all targets of that kind.
# use_precompiled_headers(target kind), kind one of:
#   standard      libraries that know the standard library only
#   qt            libraries on Qt Core
#   window        windows
#   test, qt_test, window_test   test programs of the same kinds
# A file must still include what it uses: clang-tidy reads every file without these headers.
set(standard_headers <algorithm> <array> <chrono> <cstdint> <functional> <map> <memory> <optional> <set> <span> <string>
    <string_view> <tuple> <unordered_map> <utility> <variant> <vector>)
set(test_headers ${standard_headers} <fstream> <sstream> <filesystem> <gtest/gtest.h> <gmock/gmock.h>)

set(precompiled_standard ${standard_headers})
set(precompiled_qt ${standard_headers} <QtCore/QtCore>)
set(precompiled_window ${standard_headers} <QtWidgets/QtWidgets>)
set(precompiled_test ${test_headers})
set(precompiled_qt_test ${test_headers} <QtCore/QtCore>)
set(precompiled_window_test ${test_headers} <QtWidgets/QtWidgets>)
set(precompiled_qt_libraries Qt6::Core)
set(precompiled_window_libraries Qt6::Widgets)
set(precompiled_test_libraries GTest::gtest GTest::gmock)
set(precompiled_qt_test_libraries Qt6::Core GTest::gtest GTest::gmock)
set(precompiled_window_test_libraries Qt6::Widgets GTest::gtest GTest::gmock)

# What test programs do themselves takes no time worth optimizing; compiling them does.
add_library(test_code INTERFACE)
target_compile_options(test_code INTERFACE $<$<CONFIG:Release>:-O0>)
if(TAVOLO_SANITIZE)
    # The sanitizers are for the code under test. The address sanitizer stays on both sides: it must know of containers' memory.
    target_compile_options(test_code INTERFACE -O0 -fno-sanitize=undefined)
    if(TAVOLO_FUZZ)
        target_compile_options(test_code INTERFACE -fno-sanitize=fuzzer-no-link)
    endif()
endif()

function(use_precompiled_headers target kind)
    set(holder precompiled_${kind}_headers)
    if(NOT TARGET ${holder})
        add_library(${holder} OBJECT ${CMAKE_SOURCE_DIR}/cmake/precompiled_headers.cpp)
        target_link_libraries(${holder} PRIVATE project_options ${precompiled_${kind}_libraries})
        if(kind MATCHES "qt|window")
            target_link_libraries(${holder} PRIVATE qt_options)
        endif()
        if(kind MATCHES "test")
            # Test programs are compiled as programs, not as libraries: the compiler refuses a header made the other way.
            set_target_properties(${holder} PROPERTIES POSITION_INDEPENDENT_CODE OFF)
            if(NOT WIN32)  # where no code is told from other code that way
                target_compile_options(${holder} PRIVATE -fPIE)
            endif()
            target_link_libraries(${holder} PRIVATE test_code)
        endif()
        target_precompile_headers(${holder} PRIVATE ${precompiled_${kind}})
    endif()
    if(kind MATCHES "test")
        # Behind what else it links, whose options it takes back.
        target_link_libraries(${target} PRIVATE test_code)
    endif()
    target_precompile_headers(${target} REUSE_FROM ${holder})
endfunction()
