# Looks at what the rooms of src/ui include: cmake -DSOURCES=<src/ui> -P rooms.cmake
# The kit could be another program's as well; wizard and editor do not know each other.
foreach(room kit wizard editor)
    file(GLOB files ${SOURCES}/${room}/*.h ${SOURCES}/${room}/*.cpp)
    if(NOT files)
        message(SEND_ERROR "${room}: no sources")
    endif()
    foreach(file IN LISTS files)
        file(STRINGS ${file} includes REGEX "^#include \"")
        foreach(line IN LISTS includes)
            string(REGEX REPLACE "^#include \"(.*)\".*" "\\1" included "${line}")
            if(room STREQUAL kit AND NOT included MATCHES "^(base|ui/kit)/"
               OR room STREQUAL wizard AND included MATCHES "^ui/editor/"
               OR room STREQUAL editor AND included MATCHES "^ui/wizard/")
                message(SEND_ERROR "${file} is not to know ${included}")
            endif()
        endforeach()
    endforeach()
endforeach()
