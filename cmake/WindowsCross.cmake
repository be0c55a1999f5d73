# What the Windows cross build needs from the host besides the cross compiler: CLI11's headers
# (header-only, taken alone so that the host's other headers stay out of the build), GoogleTest
# built from Debian's sources with the cross compiler, and Wine to run the programs for CTest.

find_path(SCOURMILL_CLI11_HOST_DIR CLI/CLI.hpp PATHS /usr/include NO_DEFAULT_PATH NO_CMAKE_FIND_ROOT_PATH)
if(NOT SCOURMILL_CLI11_HOST_DIR)
    message(FATAL_ERROR "CLI11 headers not found (Debian package libcli11-dev)")
endif()
file(COPY ${SCOURMILL_CLI11_HOST_DIR}/CLI DESTINATION ${CMAKE_BINARY_DIR}/host-headers)
add_library(CLI11::CLI11 INTERFACE IMPORTED)
target_include_directories(CLI11::CLI11 SYSTEM INTERFACE ${CMAKE_BINARY_DIR}/host-headers)

if(SCOURMILL_TESTS)
    set(SCOURMILL_GOOGLETEST_SOURCE /usr/src/googletest CACHE PATH "GoogleTest sources (Debian package googletest)")
    set(BUILD_GMOCK OFF CACHE BOOL "" FORCE)
    set(INSTALL_GTEST OFF CACHE BOOL "" FORCE)
    add_subdirectory(${SCOURMILL_GOOGLETEST_SOURCE} ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)

    # CTest runs every Windows program through Wine, in the prefix that WINEPREFIX names.
    find_program(SCOURMILL_WINE NAMES wine wine64)
    if(SCOURMILL_WINE)
        set(CMAKE_CROSSCOMPILING_EMULATOR ${CMAKE_SOURCE_DIR}/scripts/wine-run.sh)
    else()
        message(STATUS "Wine not found: the Windows tests are built but cannot run here")
    endif()
endif()
