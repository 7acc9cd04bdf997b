#include "field/irreducible.h"

#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
/// y := y^q modulo the polynomial of height h, q the number of elements below.
static void frobenius_of_field(const TowerWords& t, int32_t h, uint32_t* y) {
    for (int64_t i = 0; i < t.at[h - 1].size; i++) {
        poll_interrupt();
        tw_power(t, h, y, t.f.p, y);
    }
}

bool tw_irreducible(const TowerWords& t, int32_t h) {
    const int32_t n = t.at[h].n;
    const int64_t below = t.at[h - 1].size, size = t.at[h].size;
    ScratchMark mark = scratch_mark();
    auto *y = scratch_array<uint32_t>(size), *a = scratch_array<uint32_t>(size + below),
         *b = scratch_array<uint32_t>(size);
    tw_set(t, h, 0, y);
    y[below] = 1;  // the variable itself
    bool irreducible = true;
    for (int32_t i = 1; i <= n / 2 && irreducible; i++) {
        frobenius_of_field(t, h, y);
        memcpy(a, t.at[h].p, static_cast<size_t>(size) * sizeof(uint32_t));
        tw_set(t, h - 1, 1, a + size);
        memcpy(b, y, static_cast<size_t>(size) * sizeof(uint32_t));
        b[below] = wf_sub(t.f, b[below], 1);
        uint32_t* g = nullptr;
        irreducible = tw_poly_gcd(t, h - 1, a, n, b, n - 1, &g) == 0;
    }
    scratch_release(mark);
    return irreducible;
}
}  // namespace tolvex
