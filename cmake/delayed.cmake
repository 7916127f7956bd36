# Libraries of the system that are loaded when the first of their functions is called. They make
# most of a program's start (user32 alone half of it in Wine), and much that it is started for needs
# none of them: veskbuild --version, --help, --list, a word that is mistyped.
#
# delayed::NAME is NAME.dll with the functions that cmake/delayed/NAME.def lists; one that is not
# listed there is linked in the ordinary way and has the library loaded at the start again, which
# e2e.loading notices.
if(NOT WIN32)
    return()
endif()

# vesk_imports(<library> <result>): what nm says of the toolchain's import library.
function(vesk_imports library result)
    execute_process(COMMAND ${CMAKE_C_COMPILER} -print-file-name=lib${library}.a
        OUTPUT_VARIABLE imports OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
    execute_process(COMMAND ${CMAKE_NM} ${imports}
        OUTPUT_VARIABLE symbols ERROR_QUIET COMMAND_ERROR_IS_FATAL ANY)
    set(${result} "${symbols}" PARENT_SCOPE)
endfunction()

# vesk_decorate(<library> <def> <result>): the same list with the names that 32-bit functions have,
# "Name@8", as that library tells them.
function(vesk_decorate library def result)
    vesk_imports(${library} symbols)
    file(STRINGS ${def} lines)
    set(text "")
    foreach(line IN LISTS lines)
        if(line MATCHES LongPtr) # 32-bit programs call the one without "Ptr"
            continue()
        endif()
        if(symbols MATCHES " T _(${line}@[0-9]+)\n")
            set(line ${CMAKE_MATCH_1})
            # Every call goes through the pointer, so the linker sees no use for the thunk that the
            # pointer holds at first, and leaves it out.
            target_link_options(delayed_${library} INTERFACE -Wl,-u,_${line})
        elseif(NOT line MATCHES "^(LIBRARY|EXPORTS)")
            message(FATAL_ERROR "${imports} has no ${line}")
        endif()
        string(APPEND text "${line}\n")
    endforeach()
    file(WRITE ${result} "${text}")
endfunction()

function(vesk_delay library)
    add_library(delayed_${library} INTERFACE)
    add_library(delayed::${library} ALIAS delayed_${library})
    if(MSVC)
        target_link_libraries(delayed_${library} INTERFACE ${library} delayimp)
        target_compile_definitions(delayed_${library} INTERFACE DELAYIMP_INSECURE_WRITABLE_HOOKS)
        target_link_options(delayed_${library} INTERFACE /DELAYLOAD:${library}.dll)
        return()
    endif()
    set(listed ${PROJECT_SOURCE_DIR}/cmake/delayed/${library}.def)
    set(folder ${PROJECT_BINARY_DIR}/delayed)
    file(MAKE_DIRECTORY ${folder})
    set_property(DIRECTORY ${PROJECT_SOURCE_DIR} APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${listed})
    if(CMAKE_SIZEOF_VOID_P EQUAL 4)
        vesk_decorate(${library} ${listed} ${folder}/${library}.def)
        set(listed ${folder}/${library}.def)
    endif()
    execute_process(COMMAND ${CMAKE_DLLTOOL} --kill-at --input-def ${listed}
        --output-delaylib ${folder}/lib${library}.a WORKING_DIRECTORY ${folder}
        COMMAND_ERROR_IS_FATAL ANY)
    target_link_libraries(delayed_${library} INTERFACE
        ${folder}/lib${library}.a delayimp ${library})
endfunction()

foreach(library advapi32 comdlg32 ole32 shell32 user32 ws2_32)
    vesk_delay(${library})
endforeach()
