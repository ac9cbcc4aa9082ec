# add_languages(target file.ts...): compiles the translations into `target`, as ":/i18n/<file>.qm". Needs lrelease where there are any.
function(add_languages target)
    if(NOT ARGN)
        return()
    endif()
    find_program(LRELEASE_PROGRAM lrelease HINTS /usr/lib/qt6/bin REQUIRED)
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/${target}-languages)
    set(list "<RCC>\n<qresource prefix=\"/i18n\">\n")
    set(compiled)
    foreach(source IN LISTS ARGN)
        get_filename_component(source ${source} ABSOLUTE)
        get_filename_component(name ${source} NAME_WE)
        add_custom_command(OUTPUT ${folder}/${name}.qm
            COMMAND ${CMAKE_COMMAND} -E make_directory ${folder}
            COMMAND ${LRELEASE_PROGRAM} -silent ${source} -qm ${folder}/${name}.qm
            DEPENDS ${source} COMMENT "Compiling the texts of ${name}" VERBATIM)
        list(APPEND compiled ${folder}/${name}.qm)
        string(APPEND list "<file>${name}.qm</file>\n")
    endforeach()
    file(CONFIGURE OUTPUT ${folder}/languages.qrc CONTENT "${list}</qresource>\n</RCC>\n" @ONLY)
    add_custom_command(OUTPUT ${folder}/languages.cpp
        COMMAND Qt6::rcc --name ${target}_languages -o ${folder}/languages.cpp ${folder}/languages.qrc
        DEPENDS ${compiled} ${folder}/languages.qrc VERBATIM)
    target_sources(${target} PRIVATE ${folder}/languages.cpp)
endfunction()
