#pragma once

// Column loops are compiled twice, for AVX2 and for any x86-64 processor; the loader picks one. Other
// platforms have a single version, and so do sanitizers: the loader picks before their runtime has started.
#if defined(__x86_64__) && defined(__linux__) && defined(__GNUC__) && !defined(__clang__) &&                 \
    !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
#define QEL_VECTORISED __attribute__((target_clones("avx2", "default")))
#else
#define QEL_VECTORISED
#endif
