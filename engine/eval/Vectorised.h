#pragma once

// Loops over columns are compiled twice, for any processor and for those with 256-bit registers; the program
// picks when it is loaded. Elsewhere there is one version.
#if defined(__x86_64__) && defined(__linux__) && defined(__GNUC__) && !defined(__clang__) &&                 \
    !defined(__SANITIZE_ADDRESS__)
#define QEL_VECTORISED __attribute__((target_clones("avx2", "default")))
#else
#define QEL_VECTORISED
#endif
