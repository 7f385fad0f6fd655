/// Function multi-versioning: compiles a function for several levels of the processor, of which the one that
/// fits is chosen at load time. The result is the same on all: integer arithmetic, or IEEE operations one by
/// one. The choice is the C library's, which not every one can make.
#pragma once

#include <cstdlib>  // any header of the C library tells whether it is glibc

// VANTLE_SANITIZED: what watches every load and store is one build for any processor, of plain loops and
// stores.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define VANTLE_SANITIZED 1
#elif defined(__has_feature)
#define VANTLE_SANITIZED (__has_feature(address_sanitizer) || __has_feature(thread_sanitizer))
#else
#define VANTLE_SANITIZED 0
#endif

// VANTLE_BASE_LEVEL, VANTLE_WIDE_LEVEL: for functions of one name that are written for each level by hand,
// which those that see all of them call by it.
#if defined(__x86_64__) && defined(__GLIBC__) && defined(__GNUC__) && !defined(__clang__) && !VANTLE_SANITIZED
#define VANTLE_LEVELS 1
#define VANTLE_MULTIVERSION __attribute__((target_clones("default", "arch=x86-64-v3", "arch=x86-64-v4")))
#define VANTLE_BASE_LEVEL __attribute__((target("default")))
#define VANTLE_WIDE_LEVEL __attribute__((target("arch=x86-64-v3")))
#else
#define VANTLE_LEVELS 0
#define VANTLE_MULTIVERSION
#define VANTLE_BASE_LEVEL
#endif

/// For what such a function is made of: a helper that is not compiled into it would be one for any processor.
#define VANTLE_INLINE [[gnu::always_inline]] inline
/// The same for a lambda, where it stands behind the parameters.
#define VANTLE_INLINED __attribute__((always_inline))

namespace vantle {

#if VANTLE_LEVELS
/// Whether registers have 32 bytes and are permuted as a whole.
inline bool hasAvx2() { return __builtin_cpu_supports("avx2") != 0; }
/// Whether they have 64 bytes, a cache line.
inline bool hasAvx512() { return __builtin_cpu_supports("avx512bw") != 0; }
#elif VANTLE_SANITIZED
/// What is drawn otherwise with wide registers needs none: tests draw as every level does, whatever the
/// processor has.
enum class Level { base, avx2, avx512 };
inline Level testedLevel = Level::base;
inline bool hasAvx2() { return testedLevel >= Level::avx2; }
inline bool hasAvx512() { return testedLevel >= Level::avx512; }
#else
inline bool hasAvx2() { return false; }
inline bool hasAvx512() { return false; }
#endif

}  // namespace vantle
