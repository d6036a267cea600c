# One place for language level, optimisation and warnings.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

if(NOT CMAKE_BUILD_TYPE)
    set(CMAKE_BUILD_TYPE Release)
endif()

# GCC 12 leaves the pixel kernels scalar below -O3.
set(CMAKE_CXX_FLAGS_RELEASE "-O3 -DNDEBUG")
set(CMAKE_CXX_FLAGS_RELWITHDEBINFO "-O3 -g")

add_library(zr_flags INTERFACE)
target_include_directories(zr_flags INTERFACE ${CMAKE_SOURCE_DIR})
# Pixels must not depend on the processor: a fused multiply-add rounds once where the plain form rounds twice.
target_compile_options(zr_flags INTERFACE -ffp-contract=off -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Wold-style-cast)
if(ZR_WERROR)
    target_compile_options(zr_flags INTERFACE -Werror)
endif()
if(ZR_SANITIZE)
    target_compile_options(zr_flags INTERFACE -fsanitize=${ZR_SANITIZE} -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(zr_flags INTERFACE -fsanitize=${ZR_SANITIZE})
endif()
if(ZR_FUZZ)
    target_compile_options(zr_flags INTERFACE -fsanitize=fuzzer-no-link)
endif()

find_program(ZR_CCACHE ccache)
if(ZR_CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${ZR_CCACHE})
endif()

# What a program that starts others needs under the thread sanitizer.
if(ZR_SANITIZE MATCHES thread)
    add_library(zr_tsan_children OBJECT ${CMAKE_CURRENT_LIST_DIR}/tsan_children.cpp)
else()
    add_library(zr_tsan_children INTERFACE)
endif()
