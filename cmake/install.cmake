# The program folder, as it is used: the programs find their catalogue, archives and read-me beside
# themselves, so everything goes into the prefix itself. The component "programs" is the programs alone.
if(NOT WIN32)
    return()
endif()
install(TARGETS veskbuild veskbuilder RUNTIME DESTINATION . COMPONENT programs)
install(FILES ${PROJECT_SOURCE_DIR}/packaging/readme.txt ${PROJECT_SOURCE_DIR}/packaging/start-here.txt
    ${PROJECT_SOURCE_DIR}/docs/guide.md ${PROJECT_SOURCE_DIR}/LICENSE DESTINATION . COMPONENT texts)

# What is linked into them is listed from the linker's own account (see packaging/make_spdx.py).
if(NOT MSVC)
    foreach(program veskbuild veskbuilder)
        target_link_options(${program} PRIVATE -Wl,-Map,${PROJECT_BINARY_DIR}/${program}.map)
    endforeach()
endif()
