// Products of limb arrays: the choice of method by length.
#include "numbers/limbs.h"
#include "storage/interrupt.h"
namespace tolvex {
void limbs_mul_school(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn) {
    r[an] = limbs_mul_1(r, a, an, b[0]);
    for (int64_t j = 1; j < bn; j++) r[an + j] = limbs_addmul_1(r + j, a, an, b[j]);
}

void limbs_mul(limb* r, const limb* a, int64_t an, const limb* b, int64_t bn) {
    if (an < bn) {
        limbs_mul_school(r, b, bn, a, an);
    } else {
        limbs_mul_school(r, a, an, b, bn);
    }
}
}  // namespace tolvex
