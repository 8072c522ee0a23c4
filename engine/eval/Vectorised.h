#pragma once

// Loops over columns are compiled twice, for AVX2 and for any processor; RunVectorised picks one. What they
// call must be inlined into them (QEL_INLINE), or it stays what any processor runs.

#define QEL_INLINE inline __attribute__((always_inline))

#if defined(__x86_64__) || defined(__i386__)
#define QEL_AVX2 __attribute__((target("avx2"), noinline))
#endif

namespace qel::engine {

#ifdef QEL_AVX2

/// On Windows the stack is aligned to 16 bytes and GCC takes it for one of 32 (its bug 54412), so that these
/// functions need the assembler's -muse-unaligned-vector-move there.
template <class Loop>
QEL_AVX2 auto RunWithAvx2(const Loop& loop) {
    const Loop own = loop; // whose captures no store can change, for all that the compiler knows
    return own();
}

#endif

/// Calls `loop`, a lambda that is always inlined.
template <class Loop>
QEL_INLINE auto RunVectorised(const Loop& loop) {
#ifdef QEL_AVX2
    if (__builtin_cpu_supports("avx2") != 0) { // and the system saves its registers
        return RunWithAvx2(loop);
    }
#endif
    return loop();
}

} // namespace qel::engine
