# Programs for Windows (64 bit), compiled here by mingw-w64 with the threads of the C++ standard library
# (Debian: g++-mingw-w64-x86-64-posix). Linked statically: a program brings its runtime along and needs no DLL beside it.
set(CMAKE_SYSTEM_NAME Windows)
set(CMAKE_SYSTEM_PROCESSOR x86_64)
set(CMAKE_C_COMPILER x86_64-w64-mingw32-gcc-posix)
set(CMAKE_CXX_COMPILER x86_64-w64-mingw32-g++-posix)
set(CMAKE_RC_COMPILER x86_64-w64-mingw32-windres)
set(CMAKE_EXE_LINKER_FLAGS_INIT -static)

# Programs are this machine's, everything else is the target's.
execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../packaging/windows/build_libraries --where
    OUTPUT_VARIABLE libraries OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../packaging/windows/build_webp --where
    OUTPUT_VARIABLE qt OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
# What it is made of, as long as it is not there.
execute_process(COMMAND ${CMAKE_CURRENT_LIST_DIR}/../packaging/windows/build_qt --where
    OUTPUT_VARIABLE plain_qt OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(CMAKE_FIND_ROOT_PATH /usr/x86_64-w64-mingw32 ${libraries} ${qt} ${plain_qt})
# Qt's tools are this machine's, too.
set(QT_HOST_PATH /usr)
file(GLOB QT_HOST_PATH_CMAKE_DIR /usr/lib/*-linux-gnu/cmake)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
set(ENV{PKG_CONFIG_LIBDIR} ${libraries}/lib/pkgconfig)
