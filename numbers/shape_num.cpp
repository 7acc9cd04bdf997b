#include "numbers/shape_num.h"

#include "numbers/num_compare.h"
namespace tolvex {
int32_t sizenumber(const number* p) {
    if (lintmode) return numbersize;
    int64_t bytes = numbersize + static_cast<int64_t>(p->size) * numnodesize;
    return bytes > INT32_MAX ? INT32_MAX : static_cast<int32_t>(bytes);
}

boolean oversize(const number* n, const number* m) {
    constexpr int64_t k_limit = 1000000;
    if (n->head->value == 0 || m->head->value == 0) return 0;
    if (n->size > 1 || m->size > 1) return 1;
    int64_t product = static_cast<int64_t>(n->head->value) * m->head->value;
    return product > k_limit || product < -k_max_digit;
}

boolean sparse_oversize(const number* n, const number* m) { return oversize(n, m); }

int32_t convert_to_int(const number* n) {
    if (lintmode) return n->lint;
    int32_t head = n->head->value;
    if (n->size == 1) return head;
    if (n->size > 2 || head > 7 || head < -7) return k_no_word;
    return head * k_base + n->head->next->value;  // -(2^31 - 1) is k_no_word itself
}
}  // namespace tolvex
