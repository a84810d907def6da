// Function multiversioning for kernels that gain from wider vectors.
#pragma once

#include <cstdint>  // says whether the C library is glibc

// A kernel marked QUO_MULTIVERSION is compiled for the baseline and for x86-64-v3 (AVX2, FMA), and the loader picks
// one. The source stays the only one; contraction stays off, so both give the same bytes. Elsewhere the mark does
// nothing: NEON is the baseline of aarch64, Clang 14 has no such clones, and sanitizers do not follow the loader's
// choice.
//
// Where no loop becomes the wider vectors, one function is written twice, marked QUO_BASELINE and, where that is
// defined, QUO_WIDE.
#if defined(__x86_64__) && defined(__GLIBC__) && !defined(__clang__) && defined(QUO_FUNCTION_VERSIONS)
#define QUO_MULTIVERSION __attribute__((target_clones("default", "arch=x86-64-v3")))
#define QUO_BASELINE __attribute__((target("default")))
#define QUO_WIDE __attribute__((target("arch=x86-64-v3")))
#else
#define QUO_MULTIVERSION
#define QUO_BASELINE
#endif
