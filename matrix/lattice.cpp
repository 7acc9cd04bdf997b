#include "matrix/lattice.h"

#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <numeric>
namespace tolvex {
bool make_lattice(Lattice* l, const int32_t* degree, int32_t vars, int64_t total, int64_t most) {
    if (vars > k_lattice_vars) return false;
    total = std::min(total, std::accumulate(degree, degree + vars, int64_t{0}));
    if (total >= most) return false;
    l->vars = vars;
    l->total = static_cast<int32_t>(total);
    std::copy_n(degree, vars, l->degree);
    int64_t width = total + 1;
    l->size = scratch_array<int64_t>(width * (vars + 1));
    std::fill_n(l->size + width * vars, width, 1);
    for (int32_t i = vars - 1; i >= 0; i--) {
        const int64_t* below = l->size + width * (i + 1);
        for (int64_t b = 0; b < width; b++) {
            // one budget more: the sum gains a term, and loses one where the degree ends
            int64_t sum = b > 0 ? l->size[width * i + b - 1] + below[b] : below[0];
            if (b > degree[i]) sum -= below[b - degree[i] - 1];
            l->size[width * i + b] = std::min(sum, INT64_MAX / 4);
        }
        if (l->size[width * i + total] > most) return false;
    }
    l->count = l->size[total];
    return true;
}

namespace {
struct Interpolation {
    const Lattice* l;
    const WordField* f;
    const uint32_t* point;  // of the variable at work
    uint32_t* inverse;      // of the differences 1, 2, ... in a prime field
    int64_t* start;         // where the parts of a line begin
};
}  // namespace

/// run(small, big, count) for the runs of neighbours that two parts of a line have in common, variables from
/// `var` on: the exponents of the part with the smaller budget.
template <class Run>
static void common_runs(const Lattice& l, int32_t var, int32_t budget, uint32_t* small, int32_t more,
                        uint32_t* big, Run run) {
    if (var >= l.vars - 1) {
        run(small, big, var == l.vars ? 1 : lattice_reach(l, var, budget) + 1);
        return;
    }
    for (int32_t a = 0; a <= lattice_reach(l, var, budget); a++) {
        common_runs(l, var + 1, budget - a, small, more - a, big, run);
        small += lattice_size(l, var + 1, budget - a);
        big += lattice_size(l, var + 1, more - a);
    }
}

static uint32_t inverse_difference(const Interpolation& n, int32_t k, int32_t j) {
    if (!n.f->table) return n.inverse[j];
    return wf_inverse(*n.f, wf_sub(*n.f, n.point[k], n.point[k - j]));
}

static int32_t begin_line(const Interpolation& n, int32_t var, int32_t budget) {
    int32_t reach = lattice_reach(*n.l, var, budget);
    n.start[0] = 0;
    for (int32_t a = 0; a < reach; a++) n.start[a + 1] = n.start[a] + lattice_size(*n.l, var + 1, budget - a);
    return reach;
}

/// One line: its values become divided differences.
static void divide_line(const Interpolation& n, int32_t var, int32_t budget, uint32_t* line) {
    const WordField& f = *n.f;
    int32_t reach = begin_line(n, var, budget);
    for (int32_t j = 1; j <= reach; j++) {
        for (int32_t k = reach; k >= j; k--) {
            uint32_t c = inverse_difference(n, k, j);
            common_runs(*n.l, var + 1, budget - k, line + n.start[k], budget - k + 1, line + n.start[k - 1],
                        [&f, c](uint32_t* x, const uint32_t* before, int32_t count) {
                            for (int32_t i = 0; i < count; i++)
                                x[i] = wf_mul(f, wf_sub(f, x[i], before[i]), c);
                        });
        }
        poll_interrupt();
    }
}

/// One line: what has been divided in all variables becomes coefficients of powers of this one. Beyond the
/// lattice divided differences are 0, as values would not be.
static void expand_line(const Interpolation& n, int32_t var, int32_t budget, uint32_t* line) {
    const WordField& f = *n.f;
    int32_t reach = begin_line(n, var, budget);
    for (int32_t k = reach - 1; k >= 0; k--) {
        uint32_t minus = wf_neg(f, n.point[k]);
        for (int32_t j = k; minus != 0 && j < reach; j++)
            common_runs(*n.l, var + 1, budget - j - 1, line + n.start[j + 1], budget - j, line + n.start[j],
                        [&f, minus](const uint32_t* next, uint32_t* x, int32_t count) {
                            for (int32_t i = 0; i < count; i++)
                                x[i] = wf_add(f, x[i], wf_mul(f, next[i], minus));
                        });
        poll_interrupt();
    }
}

using LineStep = void (*)(const Interpolation& n, int32_t var, int32_t budget, uint32_t* line);

/// All lines of the variable `along`.
static void for_lines(const Interpolation& n, int32_t along, int32_t var, int32_t budget, uint32_t* part,
                      LineStep step) {
    if (var == along) return step(n, var, budget, part);
    for (int32_t a = 0; a <= lattice_reach(*n.l, var, budget); a++) {
        for_lines(n, along, var + 1, budget - a, part, step);
        part += lattice_size(*n.l, var + 1, budget - a);
    }
}

void lattice_interpolate(const Lattice& l, const WordField& f, const uint32_t* const* point,
                         uint32_t* value) {
    ScratchMark mark = scratch_mark();
    int32_t most = 0;
    for (int32_t i = 0; i < l.vars; i++) most = std::max(most, l.degree[i]);
    Interpolation n = {&l, &f, nullptr, scratch_array<uint32_t>(int64_t{most} + 1),
                       scratch_array<int64_t>(int64_t{most} + 2)};
    for (int32_t j = 1; !f.table && j <= most; j++) n.inverse[j] = wf_inverse(f, static_cast<uint32_t>(j));
    for (LineStep step : {divide_line, expand_line})
        for (int32_t i = 0; i < l.vars; i++) {
            n.point = point[i];
            if (l.degree[i] > 0) for_lines(n, i, 0, l.total, value, step);
        }
    scratch_release(mark);
}
}  // namespace tolvex
