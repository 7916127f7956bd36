# Three dependencies: libdeflate (inflate in one piece, CRC-32), zlib (inflate piece by piece) and
# doctest (tests only).
# On Debian tools/setup lays them below build/deps; elsewhere a package manager provides them.
set(VESK_DEPS_DIR ${PROJECT_SOURCE_DIR}/build/deps CACHE PATH "Where tools/setup put the dependencies")

if(EXISTS ${VESK_DEPS_DIR}/libdeflate/libdeflate.h)
    file(GLOB libdeflate_sources CONFIGURE_DEPENDS
        ${VESK_DEPS_DIR}/libdeflate/lib/*.c ${VESK_DEPS_DIR}/libdeflate/lib/x86/*.c)
    # Only decompression and the checksum are used; the compressors would be dead weight.
    list(FILTER libdeflate_sources EXCLUDE REGEX "_compress|adler32")
    add_library(libdeflate STATIC ${libdeflate_sources})
    target_include_directories(libdeflate SYSTEM PUBLIC ${VESK_DEPS_DIR}/libdeflate)
    target_compile_options(libdeflate PRIVATE -O2 -w -ffunction-sections -fdata-sections)
    if(VESK_FUZZ)
        target_compile_options(libdeflate PRIVATE -fsanitize=address)
    endif()
    add_library(libdeflate::libdeflate_static ALIAS libdeflate)
else()
    find_package(libdeflate CONFIG REQUIRED)
endif()

set(ZLIB_USE_STATIC_LIBS ON)
find_package(ZLIB REQUIRED)

if(NOT VESK_BUILD_TESTS)
    return()
endif()
# Never the system's include folder: the cross compiler must not see the rest of it.
if(EXISTS ${VESK_DEPS_DIR}/include/doctest/doctest.h)
    set(VESK_DOCTEST_INCLUDE ${VESK_DEPS_DIR}/include)
else()
    find_path(VESK_DOCTEST_INCLUDE doctest/doctest.h REQUIRED)
endif()
add_library(vesk_doctest INTERFACE)
target_include_directories(vesk_doctest SYSTEM INTERFACE ${VESK_DOCTEST_INCLUDE})
target_compile_definitions(vesk_doctest INTERFACE DOCTEST_CONFIG_NO_MULTITHREADING
    DOCTEST_CONFIG_SUPER_FAST_ASSERTS)
