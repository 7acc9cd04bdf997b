#pragma once
/// storage/wide_vectors.h: the mark of functions whose loops are worth a copy of their own for wide vectors.
///
/// Purpose    one copy of the function for processors with 256-bit vectors and fused products and one for all
///            others, chosen when the program starts. Elsewhere, and in the checked build, the one portable
///            copy.
#if defined(__x86_64__) && defined(__gnu_linux__) && defined(__GNUC__) && !defined(__clang__) &&             \
    !defined(TOLVEX_CHECKED)
#define WIDE_VECTORS __attribute__((target_clones("arch=x86-64-v3", "default")))
#else
#define WIDE_VECTORS
#endif
