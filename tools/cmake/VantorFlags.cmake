# Compiler flags as targets: link what applies.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON) # for clang-tidy
if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release CACHE STRING "Release, Debug or RelWithDebInfo" FORCE)
endif()

add_library(vantor_warnings INTERFACE)
target_compile_options(vantor_warnings INTERFACE -Wall -Wextra -Wpedantic -Wshadow $<$<BOOL:${VANTOR_WERROR}>:-Werror>)

# clang from 19 on misses members that a designated initialiser leaves out. They are null by the language, and the
# interpreter's records have others in each version: the module names what it sets.
include(CheckCXXCompilerFlag)
if(CMAKE_CXX_COMPILER_ID MATCHES Clang)
    check_cxx_compiler_flag(-Wmissing-designated-field-initializers VANTOR_CLANG_MISSES_MEMBERS)
    if(VANTOR_CLANG_MISSES_MEMBERS)
        target_compile_options(vantor_warnings INTERFACE -Wno-missing-designated-field-initializers)
    endif()
endif()

# Sums of doubles are bit-identical on every machine: no fused multiply-add where the source has none.
add_library(vantor_exact INTERFACE)
target_compile_options(vantor_exact INTERFACE -ffp-contract=off)

# Whether the compiler can optimise across files; for targets whose hot paths run through several.
include(CheckIPOSupported)
check_ipo_supported(RESULT VANTOR_IPO LANGUAGES CXX OUTPUT why_not)

add_library(vantor_sanitizers INTERFACE)
if(VANTOR_SANITIZE)
    target_compile_options(
        vantor_sanitizers INTERFACE -fsanitize=${VANTOR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(vantor_sanitizers INTERFACE -fsanitize=${VANTOR_SANITIZE})
endif()
