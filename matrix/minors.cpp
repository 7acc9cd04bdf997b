#include "matrix/minors.h"

#include "quoly/quoly_add.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_mult.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <bit>
namespace tolvex {
namespace {
/// A minor of the last rows: those behind the first s - (number of columns) ones.
struct Minor {
    uint64_t columns;  // bit c: column c; 0: an empty place
    quoly value;       // nil: 0
};
/// Open addressing, at most half full. Tables that have grown too small stay in scratch until the end.
struct MinorTable {
    Minor* at;
    int64_t size;  // a power of 2
    int64_t count;
};
struct Expansion {
    const quoly* block;
    int64_t stride;
    int32_t s;
    int32_t order[k_most_block_rows];  // the rows, those with the most zeros first
    MinorTable table;
};

quoly element(const Expansion& e, int32_t row, int32_t column) {
    return e.block[e.order[row] + column * e.stride];
}
}  // namespace

// ---- the table -----------------------------------------------------------------------------------------

static MinorTable new_table(int64_t size) {
    MinorTable t = {scratch_array<Minor>(size), size, 0};
    scratch_clear(t.at, static_cast<size_t>(size) * sizeof(Minor));
    return t;
}

/// The place of these columns, or the empty one where they belong.
static Minor* place_of(const MinorTable& t, uint64_t columns) {
    auto k = static_cast<int64_t>(columns * 0x9E3779B97F4A7C15u >> 20) & (t.size - 1);
    while (t.at[k].columns != 0 && t.at[k].columns != columns) k = (k + 1) & (t.size - 1);
    return &t.at[k];
}

static void enter(MinorTable& t, uint64_t columns, quoly value) {
    if (2 * t.count >= t.size) {
        MinorTable larger = new_table(2 * t.size);
        for (int64_t k = 0; k < t.size; k++)
            if (t.at[k].columns != 0) *place_of(larger, t.at[k].columns) = t.at[k];
        larger.count = t.count;
        t = larger;
    }
    *place_of(t, columns) = {columns, value};
    t.count++;
}

// ---- the expansion -------------------------------------------------------------------------------------

static int32_t zeros_of_row(const Expansion& e, int32_t row) {
    int32_t zeros = 0;
    for (int32_t c = 0; c < e.s; c++) zeros += quoly_iszero(e.block[row + c * e.stride]);
    return zeros;
}

/// Orders the rows by their zeros; returns whether that changes the sign.
static bool choose_order(Expansion& e) {
    int32_t zeros[k_most_block_rows];
    bool odd = false;
    for (int32_t r = 0; r < e.s; r++) {
        int32_t z = zeros_of_row(e, r), k = r;
        for (; k > 0 && zeros[k - 1] < z; k--) {
            zeros[k] = zeros[k - 1];
            e.order[k] = e.order[k - 1];
            odd = !odd;
        }
        zeros[k] = z;
        e.order[k] = r;
    }
    return odd;
}

/// *sum := *sum plus or minus x y.
static void add_product(quolyptr sum, quoly x, quoly y, bool minus) {
    quoly product = nullptr;
    quoly_mult(x, y, &product);
    if (*sum == nullptr) quoly_set(0, sum);
    minus ? best_quoly_sub(sum, product) : best_quoly_add(sum, product);
}

/// The minor of the last two rows.
static quoly minor_of_two(const Expansion& e, uint64_t columns) {
    int32_t first = std::countr_zero(columns), second = 63 - std::countl_zero(columns), row = e.s - 2;
    quoly a = element(e, row, first), b = element(e, row, second), c = element(e, row + 1, first),
          d = element(e, row + 1, second);
    quoly value = nullptr;
    if (!quoly_iszero(a) && !quoly_iszero(d)) quoly_mult(a, d, &value);
    if (!quoly_iszero(b) && !quoly_iszero(c)) add_product(&value, b, c, true);
    return value;
}

static quoly minor_of(Expansion& e, uint64_t columns);

/// The expansion along the first row of the minor.
static quoly expanded(Expansion& e, uint64_t columns) {
    int32_t row = e.s - std::popcount(columns);
    quoly value = nullptr;
    bool minus = false;
    for (uint64_t rest = columns; rest != 0; rest &= rest - 1, minus = !minus) {
        int32_t c = std::countr_zero(rest);
        quoly factor = element(e, row, c);
        if (quoly_iszero(factor)) continue;
        quoly below = minor_of(e, columns & ~(uint64_t{1} << c));
        if (below != nullptr) add_product(&value, factor, below, minus);
        poll_interrupt();
    }
    if (value != nullptr && quoly_iszero(value)) free_quoly(&value);
    return value;
}

/// The minor of these columns; it belongs to the table. nil: 0.
static quoly minor_of(Expansion& e, uint64_t columns) {
    const Minor* known = place_of(e.table, columns);
    if (known->columns != 0) return known->value;
    quoly value = std::popcount(columns) == 2 ? minor_of_two(e, columns) : expanded(e, columns);
    enter(e.table, columns, value);
    return value;
}

static void free_minors(MinorTable& t) {
    for (int64_t k = 0; k < t.size; k++) {
        poll_every<1024>(k);
        if (t.at[k].value != nullptr) free_quoly(&t.at[k].value);
    }
}

void small_determ(const quoly* block, int64_t stride, int32_t s, quolyptr det) {
    if (s == 1) {
        quoly_assign(block[0], det);
        return;
    }
    constexpr int64_t k_first_size = 64;
    ScratchMark mark = scratch_mark();
    Expansion e = {block, stride, s, {}, new_table(k_first_size)};
    bool odd = choose_order(e);
    uint64_t all = ~uint64_t{0} >> (64 - s);
    quoly value = s == 2 ? minor_of_two(e, all) : expanded(e, all);
    free_minors(e.table);
    scratch_release(mark);
    if (value == nullptr) quoly_set(0, &value);
    if (odd) quoly_inplace(value);
    free_quoly(det);
    *det = value;
}
}  // namespace tolvex
