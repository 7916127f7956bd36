# vesk_describe(NAME DESCRIPTION MANIFEST): gives a program its version record, the icon and its
# manifest (a path from src/).
function(vesk_describe name description manifest)
    set(resources ${PROJECT_BINARY_DIR}/generated/${name}.rc)
    configure_file(${PROJECT_SOURCE_DIR}/cmake/program.rc.in ${resources} @ONLY)
    # The resource compiler finds these through its include path and does not tell the build of them.
    set(read ui/resources/ids.h ui/resources/veskbuilder.ico ${manifest})
    list(TRANSFORM read PREPEND ${PROJECT_SOURCE_DIR}/src/)
    set_source_files_properties(${resources} PROPERTIES OBJECT_DEPENDS "${read}")
    target_sources(${name} PRIVATE ${resources})
    if(MSVC)
        target_link_options(${name} PRIVATE /MANIFEST:NO) # a second one of its own
    endif()
endfunction()
