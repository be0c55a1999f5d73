# Builds that look for memory errors and undefined behaviour (clang):
#   SCOURMILL_SANITIZE  everything under AddressSanitizer (leaks included) and
#                       UndefinedBehaviorSanitizer; every finding ends the program with a failure,
#                       so a CTest run fails on it.
#   SCOURMILL_FUZZ      also the libFuzzer programs of tests/fuzz. They live in the same build, so
#                       one compilation of the libraries serves the sanitized test run and the
#                       fuzzers; only the libraries the fuzzers exercise get coverage feedback.
option(SCOURMILL_SANITIZE "Build with AddressSanitizer and UndefinedBehaviorSanitizer (clang)" OFF)
option(SCOURMILL_FUZZ "Build the libFuzzer programs of tests/fuzz (clang; implies SCOURMILL_SANITIZE)" OFF)

if(SCOURMILL_FUZZ)
    set(SCOURMILL_SANITIZE ON)
endif()
if(SCOURMILL_SANITIZE)
    if(NOT CMAKE_CXX_COMPILER_ID MATCHES "Clang")
        message(FATAL_ERROR "SCOURMILL_SANITIZE and SCOURMILL_FUZZ need clang (-DCMAKE_CXX_COMPILER=clang++-14)")
    endif()
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
