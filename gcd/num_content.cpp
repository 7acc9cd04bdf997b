#include "gcd/num_content.h"

#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_gcd.h"
#include "numbers/num_sign.h"
#include "poly/poly_basic.h"
#include "storage/interrupt.h"
namespace tolvex {
// Folds the leaves of the chain p into com; true when 1 has been reached.
static bool fold_gcd(const polynode* p, imptr com) {
    for (; p != nullptr; p = p->next) {
        if (p->numb) {
            binary_gcd(com, p->ncoef, com);
            if (is_longint(com, 1)) return true;
        } else if (fold_gcd(p->pcoef, com)) {
            return true;
        }
    }
    return false;
}

void find_gcdcoefs(const polynode* p, imptr com) {
    if (lintmode) {
        setvalue(1, com);
        return;
    }
    setvalue(0, com);
    fold_gcd(p, com);
}

void gcd_coefs(const polynode* q, polyptrr r) {
    poly fresh = nullptr;
    poly_set(1, &fresh);
    find_gcdcoefs(q, fresh->ncoef);
    free_poly(r);
    *r = fresh;
}
}  // namespace tolvex
