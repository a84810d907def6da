# Warnings and code generation options that every target shares.
#
# quo_arithmetic fixes what floating-point code may become: no contraction of a * b + c, SSE2 instead of x87 on i386.
# Every target that computes with pixels links it, tests and tool included, so that reference results are comparable.

# GCC 12 takes vectors that are inlined and moved for memory that nobody allocated.
add_library(quo_warnings INTERFACE)
target_compile_options(quo_warnings INTERFACE
  -Wall -Wextra -Wshadow -Wdouble-promotion -Wfloat-conversion -Wvla -Wundef
  $<$<CXX_COMPILER_ID:GNU>:-Wno-free-nonheap-object>
  $<$<BOOL:${QUO_WARNINGS_AS_ERRORS}>:-Werror>)

# Tests and benchmarks build pixels from plain integers all the time; spelling out each narrowing would bury the cases.
add_library(quo_strict_warnings INTERFACE)
target_link_libraries(quo_strict_warnings INTERFACE quo_warnings)
target_compile_options(quo_strict_warnings INTERFACE -Wconversion -Wsign-conversion)
# A vector larger than those of the processor can become scalar code, which nothing but the time shows.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64|aarch64)$")
  target_compile_options(quo_strict_warnings INTERFACE $<$<CONFIG:Release>:-Wvector-operation-performance>)
endif()

add_library(quo_arithmetic INTERFACE)
target_compile_options(quo_arithmetic INTERFACE -ffp-contract=off)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(i[3-6]86|x86)$")
  target_compile_options(quo_arithmetic INTERFACE -msse2 -mfpmath=sse)
endif()
