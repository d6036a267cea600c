#pragma once

/// Marks an out-of-line pixel kernel of which a second clone for wider vectors is made and chosen
/// at run time.
///
/// ZR_MULTIVERSION_512 adds one for AVX-512, which pays where a kernel computes in double without
/// waiting for memory. All clones give the same bits (no contraction, no reordering of sums). Kept
/// out of line, because GCC loses the `__restrict` information, and with it the vectors, when it
/// inlines such a kernel. Sanitizers and clang cannot resolve clones this early in the process;
/// there, and where ZR_PLAIN_KERNELS asks for it, the plain form runs.
#if defined(__GNUC__) && !defined(__clang__) && defined(__x86_64__) &&                             \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__) && !defined(ZR_PLAIN_KERNELS)
#define ZR_MULTIVERSION __attribute__((target_clones("avx2", "default"), noinline))
#define ZR_MULTIVERSION_512                                                                        \
    __attribute__((target_clones("arch=x86-64-v4", "avx2", "default"), noinline))
/// A kernel, and a step of such, that is written in the instructions of AVX2; defined only where
/// there is such a road, and called where `__builtin_cpu_supports("avx2")` says so.
#define ZR_AVX2_KERNEL __attribute__((target("avx2"), noinline))
#define ZR_AVX2_STEP __attribute__((target("avx2"), always_inline)) static inline
#else
#define ZR_MULTIVERSION __attribute__((noinline))
#define ZR_MULTIVERSION_512 __attribute__((noinline))
#endif

/// Marks a step of such kernels, which becomes part of each clone.
#define ZR_KERNEL_STEP static inline __attribute__((always_inline))
