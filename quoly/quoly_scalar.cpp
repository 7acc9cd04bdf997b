#include "quoly/quoly_scalar.h"

#include "numbers/limbs.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_gcd.h"
#include "numbers/primes.h"
#include "numbers/residue.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_internal.h"
#include "storage/failure.h"
namespace tolvex {
static const number* numerator(const quolynode* q) { return q->numb ? q->ncoef : q->numer->ncoef; }

static int32_t gcd_of_residues(int32_t a, int32_t b) {
    if (a == 0 && b == 0) return 0;
    if (finf) return 1;
    return smallgcd(smallgcd(a, b), modulus);
}

void gcdnum(quolyptr n, quolyptr m) {
    const number *a = numerator(*n), *b = numerator(*m);
    imptr g;
    newimag(&g);
    if (modularmode) {
        g->lint = gcd_of_residues(a->lint, b->lint);
    } else if (lintmode) {
        g->lint =
            static_cast<int32_t>(word_gcd(static_cast<uint64_t>(a->lint < 0 ? -int64_t{a->lint} : a->lint),
                                          static_cast<uint64_t>(b->lint < 0 ? -int64_t{b->lint} : b->lint)));
    } else {
        setvalue(0, g);
        binary_gcd(a, b, g);
    }
    free_quoly(m);
    receive_number(n, g);
}

void nth_prime(quolyptr q) {
    int32_t i = big_quoly_convert_to_int(*q);
    if (i < 1 || i > k_small_primes) {
        error(Err::prime_index_range);
        quoly_set(0, q);
        return;
    }
    // A prime beyond the modulus is its residue.
    int32_t p = small_prime[i - 1];
    quoly_set(modularmode ? residue_of_int(p) : p, q);
}
}  // namespace tolvex
