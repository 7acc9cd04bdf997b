#include "numbers/number.h"

#include "numbers/num_assign.h"
namespace tolvex {
namespace {
/// Gives a constant both its forms: the chain for rational mode, the word for lintmode.
void both_forms(imptr x, int32_t v) {
    special_set(v, x);
    x->lint = v;
}
}  // namespace

void init_number_constants() {
    both_forms(&number_0, 0);
    both_forms(&number_1, 1);
    both_forms(&number_2, 2);
    both_forms(&number_m1, -1);
    both_forms(&number_10, 10);
    both_forms(&num_2_14, 1 << 14);
    special_set(100000000, &tens_base);
    special_set_2(100000000, 100000000, &two_tensbase);
}

bool num_check(const number* x) {
    if (x == nullptr || x->size < 1 || x->head == nullptr || x->tail == nullptr) return false;
    bool negative = x->head->value < 0;
    if (x->head->value == 0 && x->size > 1) return false;
    int32_t count = 0;
    for (numptr p = x->head; p != nullptr; p = p->next) {
        int64_t magnitude = negative ? -static_cast<int64_t>(p->value) : p->value;
        if (magnitude < 0 || magnitude > k_max_digit || ++count > x->size) return false;
        if (p->next == nullptr && p != x->tail) return false;
    }
    return count == x->size;
}
}  // namespace tolvex
