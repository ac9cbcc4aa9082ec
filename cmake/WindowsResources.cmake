# describe_program(target description): on Windows, what the system shows of a program (packaging/windows/program.rc.in); nothing
# elsewhere. Its icon is the program's, where there is artwork.
function(describe_program name description)
    if(NOT WIN32 OR NOT TAVOLO_GUI)
        return()
    endif()
    enable_language(RC)
    set(icon ${CMAKE_BINARY_DIR}/tavolo.ico)
    set(script ${CMAKE_CURRENT_BINARY_DIR}/${name}.rc)
    configure_file(${CMAKE_SOURCE_DIR}/packaging/windows/program.rc.in ${script} @ONLY)
    # By themselves: the options of the sources are none of the resources' compiler.
    add_library(${name}_resources OBJECT ${script})
    set_source_files_properties(${script} PROPERTIES OBJECT_DEPENDS "${icon};${CMAKE_SOURCE_DIR}/packaging/windows/program.manifest")
    add_dependencies(${name}_resources program_icon)
    target_sources(${name} PRIVATE $<TARGET_OBJECTS:${name}_resources>)
endfunction()
