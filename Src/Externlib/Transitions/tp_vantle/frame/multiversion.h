/// Compiles a function for several levels of the processor; the one that fits is chosen at load time. The
/// result is the same on all: integer arithmetic, or IEEE operations one by one. The choice is the C
/// library's to make when it loads a library, which not every one can.
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
/// Whether registers of the level that is chosen hold half a line of memory and are permuted as a whole.
inline bool registersHoldHalfLines() { return __builtin_cpu_supports("avx2") != 0; }
/// Whether they hold a line.
inline bool registersHoldLines() { return __builtin_cpu_supports("avx512bw") != 0; }
#elif VANTLE_SANITIZED
/// Nothing that is drawn for wide registers needs them: tests draw as each level does, whatever the processor
/// has.
enum class Level { base, halfLines, lines };
inline Level testedLevel = Level::base;
inline bool registersHoldHalfLines() { return testedLevel >= Level::halfLines; }
inline bool registersHoldLines() { return testedLevel >= Level::lines; }
#else
inline bool registersHoldHalfLines() { return false; }
inline bool registersHoldLines() { return false; }
#endif

}  // namespace vantle
