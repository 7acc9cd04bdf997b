#include "numbers/limbs.h"
#include "numbers/num_mult.h"
namespace tolvex {
namespace {
/// The square or product on limb arrays. Operands are unpacked before ans is touched, so all may be one.
void long_product(const number* n, const number* m, imptr ans) {
    bool negative = (n->head->value < 0) != (m->head->value < 0);
    LimbArena arena;
    Limbs a = arena_unpack(arena, n->head, n->size);
    Limbs b = n->head == m->head ? a : arena_unpack(arena, m->head, m->size);
    if (a.n == 0 || b.n == 0) {
        chain_replace(ans, nullptr, 0, false);
    } else {
        limb* r = arena_take(arena, a.n + b.n);
        limbs_mul(r, a.at, a.n, b.at, b.n);
        chain_replace(ans, r, a.n + b.n, negative);
    }
    arena_end(arena);
}
}  // namespace

void fast_mult(const number* n, const number* m, imptr ans) {
    if (n->size == 1 && m->size == 1) {
        chain_set_int64(ans, static_cast<int64_t>(n->head->value) * m->head->value);
    } else if (n->size <= 2 && m->size <= 2) {
        __int128 v = static_cast<__int128>(chain_small_value(n)) * chain_small_value(m);
        chain_set_wide(ans, static_cast<unsigned __int128>(v < 0 ? -v : v), v < 0);
    } else {
        long_product(n, m, ans);
    }
}
}  // namespace tolvex
