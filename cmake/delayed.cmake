# Libraries of the system that are loaded when the first of their functions is called. They make
# most of a program's start (user32 alone half of it in Wine), and much that it is started for needs
# none of them: veskbuild --version, --help, --list, a word that is mistyped. In 64 bits only, see below.
#
# delayed::NAME is NAME.dll with the functions that cmake/delayed/NAME.def lists; one that is not
# listed there is linked in the ordinary way and has the library loaded at the start again, which
# e2e.loading notices.
if(NOT WIN32)
    return()
endif()

function(vesk_delay library)
    add_library(delayed_${library} INTERFACE)
    add_library(delayed::${library} ALIAS delayed_${library})
    if(MSVC)
        target_link_libraries(delayed_${library} INTERFACE ${library} delayimp)
        target_compile_definitions(delayed_${library} INTERFACE DELAYIMP_INSECURE_WRITABLE_HOOKS)
        target_link_options(delayed_${library} INTERFACE /DELAYLOAD:${library}.dll)
        return()
    endif()
    # The thunks that dlltool makes for 32-bit programs hold no address: a call ends them.
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        target_link_libraries(delayed_${library} INTERFACE ${library} delayimp)
        return()
    endif()
    set(listed ${PROJECT_SOURCE_DIR}/cmake/delayed/${library}.def)
    set(folder ${PROJECT_BINARY_DIR}/delayed)
    file(MAKE_DIRECTORY ${folder})
    set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${listed})
    execute_process(COMMAND ${CMAKE_DLLTOOL} --kill-at --input-def ${listed}
        --output-delaylib ${folder}/lib${library}.a WORKING_DIRECTORY ${folder}
        COMMAND_ERROR_IS_FATAL ANY)
    target_link_libraries(delayed_${library} INTERFACE
        ${folder}/lib${library}.a delayimp ${library})
endfunction()

foreach(library advapi32 comdlg32 ole32 shell32 user32 ws2_32)
    vesk_delay(${library})
endforeach()
