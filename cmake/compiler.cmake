# vesk_options: what every target of the project is compiled and linked with.
add_library(vesk_options INTERFACE)
target_include_directories(vesk_options INTERFACE ${PROJECT_SOURCE_DIR}/src)

if(MSVC)
    target_compile_options(vesk_options INTERFACE /W4 /utf-8 /permissive-)
    set(CMAKE_MSVC_RUNTIME_LIBRARY "MultiThreaded$<$<CONFIG:Debug>:Debug>")
else()
    target_compile_options(vesk_options INTERFACE
        -Wall -Wextra -Wpedantic -Wconversion -Wshadow
        -ffunction-sections -fdata-sections)
    if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
        # GCC 12 takes joined std::strings for overlapping copies (its bug 105651).
        target_compile_options(vesk_options INTERFACE -Wno-restrict)
    endif()
endif()

if(WIN32)
    enable_language(RC)
    # Windows XP is the oldest system served; declaring no more than it has keeps newer functions out.
    target_compile_definitions(vesk_options INTERFACE
        WINVER=0x0501 _WIN32_WINNT=0x0501 WIN32_LEAN_AND_MEAN NOMINMAX STRICT)
    if(MSVC)
        target_link_options(vesk_options INTERFACE /LARGEADDRESSAWARE)
    else()
        # Not every linker sets these by itself.
        set(hardening -Wl,--dynamicbase,--nxcompat,--tsaware)
        if(CMAKE_SIZEOF_VOID_P EQUAL 8)
            list(APPEND hardening -Wl,--high-entropy-va)
        else()
            list(APPEND hardening -Wl,--large-address-aware) # 4 GB instead of 2 in a 64-bit system
        endif()
        target_link_options(vesk_options INTERFACE
            -static -Wl,--gc-sections,--no-insert-timestamp ${hardening} $<$<CONFIG:Release>:-s>)
    endif()
endif()

if(VESK_SANITIZE)
    set(sanitizers -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_compile_options(vesk_options INTERFACE ${sanitizers})
    target_link_options(vesk_options INTERFACE ${sanitizers})
endif()
if(VESK_FUZZ)
    set(sanitizers -fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all)
    target_compile_options(vesk_options INTERFACE ${sanitizers})
    target_link_options(vesk_options INTERFACE ${sanitizers})
endif()
if(VESK_COVERAGE)
    target_compile_options(vesk_options INTERFACE --coverage)
    target_link_options(vesk_options INTERFACE --coverage)
endif()
