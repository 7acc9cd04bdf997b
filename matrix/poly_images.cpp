// Values of a matrix at the points of a lattice, their determinants, and the polynomial through these.
#include "matrix/lane_determinant.h"
#include "matrix/poly_matrix.h"
#include "matrix/word_adjoint.h"
#include "matrix/word_determinant.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
namespace tolvex {
namespace {
constexpr int32_t k_most_lane_evaluation = 256;      // rows up to which sixteen images are kept at once
constexpr int64_t k_powers_kept = int64_t{1} << 20;  // numbers in a table of powers
}  // namespace

// ---- room ----------------------------------------------------------------------------------------------

static const PolyStage& last_stage(const PolyMatrix& m) { return m.stage[m.vars - 1]; }
static int64_t batches(const Lattice& l) { return l.degree[l.vars - 1] / k_lanes + 1; }

void open_images(PolyImages* i, const PolyMatrix* m, const Lattice* l, bool adjoint) {
    *i = {};
    i->m = m;
    i->l = l;
    i->adjoint = adjoint;
    i->root_exponent = 1;
    int64_t size = int64_t{m->n} * m->n;
    i->value = scratch_array<uint32_t>(adjoint ? l->count * size : l->count);
    i->row_at = scratch_array<int32_t>(m->n);
    for (int32_t v = 0; v < m->vars; v++) {
        i->point[v] = scratch_array<uint32_t>(batches(*l) * k_lanes + l->degree[v]);
        i->coef[v] = scratch_array<uint32_t>(m->stage[v].count);
    }
    const PolyStage& s = last_stage(*m);
    int64_t powers = (int64_t{s.most} + 1) * k_lanes;
    i->all_powers = powers * batches(*l) <= k_powers_kept;
    i->power = scratch_array<double>(i->all_powers ? powers * batches(*l) : powers);
    i->coef_lane = scratch_array<double>(s.count);
    i->lane = scratch_array<double>(m->n <= k_most_lane_rows ? size * k_lanes : k_lanes);
    i->word = scratch_array<uint32_t>((m->n <= k_most_lane_evaluation ? k_lanes : 1) * size);
    i->work = scratch_array<uint32_t>(size);
}

// ---- determinants --------------------------------------------------------------------------------------

/// Elimination of the matrix in i.work, to find an order of rows without pivots 0 at this point.
static void order_rows(PolyImages& i) {
    int32_t n = i.m->n;
    const WordField& f = i.f;
    uint32_t* a = i.work;
    ScratchMark mark = scratch_mark();
    auto* row = scratch_array<int32_t>(n);
    for (int32_t r = 0; r < n; r++) row[r] = r;
    i.negative = false;
    for (int32_t k = 0; k < n; k++) {
        int32_t best = k;
        while (best < n && a[int64_t{row[best]} * n + k] == 0) best++;
        if (best == n) continue;
        if (best != k) i.negative = !i.negative;
        std::swap(row[k], row[best]);
        const uint32_t* pivot = a + int64_t{row[k]} * n;
        uint32_t inverse = wf_inverse(f, pivot[k]);
        for (int32_t r = k + 1; r < n; r++) {
            uint32_t* at = a + int64_t{row[r]} * n;
            uint32_t minus = wf_neg(f, wf_mul(f, at[k], inverse));
            for (int32_t c = k; minus != 0 && c < n; c++)
                at[c] = wf_add(f, at[c], wf_mul(f, minus, pivot[c]));
        }
    }
    for (int32_t k = 0; k < n; k++) i.row_at[row[k]] = k;
    scratch_release(mark);
}

/// The element of the image that entry e is, with rows in their order.
static int64_t ordered_place(const PolyImages& i, int64_t e) {
    int64_t place = i.m->place[e], n = i.m->n;
    return i.row_at[place / n] * n + place % n;
}

/// The determinant of lane l of i.lane's source, computed afresh with exchanges of rows.
static uint32_t plain_determinant(const PolyImages& i, const uint32_t* image) {
    std::copy_n(image, int64_t{i.m->n} * i.m->n, i.work);
    return word_determinant(i.f, i.work, i.m->n);
}

// ---- values at points of the last variable -------------------------------------------------------------

/// The powers of the points first..first+15 of the last variable.
static const double* lane_powers_from(PolyImages& i, int64_t batch) {
    const PolyStage& s = last_stage(*i.m);
    int64_t size = (int64_t{s.most} + 1) * k_lanes;
    double* power = i.power + (i.all_powers ? batch * size : 0);
    if (i.all_powers ? batch > i.power_batch : batch != i.power_batch) {
        lane_powers(i.f, i.point[i.m->vars - 1] + batch * k_lanes, s.most, power);
        i.power_batch = batch;
    }
    return power;
}

static uint32_t* lane_word(const PolyImages& i, int32_t l) { return i.word + int64_t{l} * i.m->n * i.m->n; }

/// What stands in the lanes of element `place` goes to the images in words.
static void spread_lanes(PolyImages& i, const double* sum, int64_t place, int32_t count) {
    for (int32_t l = 0; l < count; l++) {
        auto v = static_cast<int64_t>(sum[l]);
        lane_word(i, l)[place] = static_cast<uint32_t>(v < 0 ? v + i.f.p : v);
    }
}

/// The values of all entries at the points of a batch in words; over[l] := those of the divisor.
static void evaluate_words(PolyImages& i, const double* power, int32_t count, uint32_t* over) {
    const PolyMatrix& m = *i.m;
    int64_t size = int64_t{m.n} * m.n;
    std::fill_n(i.word, size * count, 0);
    for (int64_t e = 0; e < m.entries; e++) {
        double sum[k_lanes];
        lane_values(i.f, i.coef_lane + m.start[e], last_stage(m).exp + m.start[e],
                    m.start[e + 1] - m.start[e], power, sum);
        if (m.place[e] < size) {
            spread_lanes(i, sum, m.place[e], count);
            continue;
        }
        for (int32_t l = 0; l < count; l++)
            over[l] = static_cast<uint32_t>(sum[l] < 0 ? sum[l] + i.f.p : sum[l]);
    }
}

/// The same for one point, without floating point.
static void evaluate_point(PolyImages& i, uint32_t x, uint32_t* image, uint32_t* over) {
    const PolyMatrix& m = *i.m;
    const PolyStage& s = last_stage(m);
    int64_t size = int64_t{m.n} * m.n;
    ScratchMark mark = scratch_mark();
    auto* power = scratch_array<uint32_t>(int64_t{s.most} + 1);
    power[0] = 1;
    for (int32_t e = 1; e <= s.most; e++) power[e] = wf_mul(i.f, power[e - 1], x);
    std::fill_n(image, size, 0);
    for (int64_t e = 0; e < m.entries; e++) {
        uint32_t sum = 0;
        for (int64_t t = m.start[e]; t < m.start[e + 1]; t++)
            sum = wf_add(i.f, sum, wf_mul(i.f, i.coef[m.vars - 1][t], power[s.exp[t]]));
        (m.place[e] < size ? image[m.place[e]] : *over) = sum;
    }
    scratch_release(mark);
}

/// Sixteen determinants side by side. Lanes that have met a pivot 0 are evaluated once more.
static void small_batch(PolyImages& i, const double* power, int32_t count, uint32_t* det, uint32_t* over) {
    const PolyMatrix& m = *i.m;
    int64_t size = int64_t{m.n} * m.n;
    std::fill_n(i.lane, size * k_lanes, 0.0);
    for (int64_t e = 0; e < m.entries; e++) {
        bool divisor = m.place[e] == size;
        double of_divisor[k_lanes];
        lane_values(i.f, i.coef_lane + m.start[e], last_stage(m).exp + m.start[e],
                    m.start[e + 1] - m.start[e], power,
                    divisor ? of_divisor : i.lane + ordered_place(i, e) * k_lanes);
        for (int32_t l = 0; divisor && l < count; l++)
            over[l] = static_cast<uint32_t>(of_divisor[l] < 0 ? of_divisor[l] + i.f.p : of_divisor[l]);
    }
    uint32_t zeros = lane_determinants(i.f, i.lane, m.n, det) & ((1u << count) - 1);
    for (int32_t l = 0; i.negative && l < count; l++) det[l] = wf_neg(i.f, det[l]);
    if (zeros == 0) return;
    evaluate_words(i, power, count, over);
    for (int32_t l = 0; l < count; l++)
        if ((zeros >> l) & 1) det[l] = plain_determinant(i, lane_word(i, l));
}

/// The determinants at the points `first`.. of the last variable, at most sixteen of them.
static void batch_of_points(PolyImages& i, int64_t first, int32_t count, uint32_t* det, uint32_t* over) {
    const PolyMatrix& m = *i.m;
    if (i.f.table || m.n > k_most_lane_evaluation) {
        for (int32_t l = 0; l < count; l++) {
            evaluate_point(i, i.point[m.vars - 1][first + l], i.word, &over[l]);
            det[l] = plain_determinant(i, i.word);
            poll_interrupt();
        }
        return;
    }
    const double* power = lane_powers_from(i, first / k_lanes);
    if (m.n <= k_most_lane_rows && !i.ordered) {
        evaluate_words(i, power, 1, over);
        std::copy_n(i.word, int64_t{m.n} * m.n, i.work);
        order_rows(i);
        i.ordered = true;
    }
    if (m.n <= k_most_lane_rows) return small_batch(i, power, count, det, over);
    evaluate_words(i, power, count, over);
    for (int32_t l = 0; l < count; l++) det[l] = plain_determinant(i, lane_word(i, l));
}

/// *value := what a determinant is worth. False: the divisor has a zero.
static bool take_value(const PolyImages& i, uint32_t det, uint32_t over, uint32_t* value) {
    if (i.m->divided && over == 0) return false;
    uint32_t v = i.m->divided ? wf_mul(i.f, det, wf_inverse(i.f, over)) : det;
    *value = i.root_exponent == 1 ? v : wf_power(i.f, v, i.root_exponent);
    return true;
}

static void load_coefficients(PolyImages& i) {
    const uint32_t* coef = i.coef[i.m->vars - 1];
    for (int64_t t = 0; t < last_stage(*i.m).count; t++) i.coef_lane[t] = lane_residue(i.f, coef[t]);
}

/// All points of the last variable. False: the divisor has a zero.
static bool last_variable(PolyImages& i, int32_t reach, uint32_t* value) {
    if (!i.f.table) load_coefficients(i);
    for (int32_t first = 0; first <= reach; first += k_lanes) {
        int32_t count = std::min(k_lanes, reach - first + 1);
        uint32_t det[k_lanes], over[k_lanes];
        batch_of_points(i, first, count, det, over);
        for (int32_t l = 0; l < count; l++) {
            if (!take_value(i, det[l], over[l], value + first + l)) return false;
        }
        poll_interrupt();
    }
    return true;
}

// ---- single points side by side ------------------------------------------------------------------------

/// The sixteen images that have been gathered get their determinants.
static bool flush_gathered(PolyImages& i) {
    const PolyMatrix& m = *i.m;
    int64_t size = int64_t{m.n} * m.n;
    uint32_t det[k_lanes];
    int32_t count = i.gathered;
    if (count == 0) return true;
    i.gathered = 0;
    std::fill_n(i.lane, size * k_lanes, 0.0);
    for (int64_t e = 0; e < m.entries; e++) {
        if (m.place[e] == size) continue;
        double* lane = i.lane + ordered_place(i, e) * k_lanes;
        for (int32_t l = 0; l < count; l++) lane[l] = lane_residue(i.f, lane_word(i, l)[m.place[e]]);
    }
    uint32_t zeros = lane_determinants(i.f, i.lane, m.n, det);
    for (int32_t l = 0; l < count; l++) {
        if ((zeros >> l) & 1)
            det[l] = plain_determinant(i, lane_word(i, l));
        else if (i.negative)
            det[l] = wf_neg(i.f, det[l]);
        if (!take_value(i, det[l], i.over[l], i.target[l])) return false;
    }
    return true;
}

/// The points of a short line of the last variable, one after the other.
static bool gather_line(PolyImages& i, int32_t reach, uint32_t* value) {
    const PolyMatrix& m = *i.m;
    for (int32_t a = 0; a <= reach; a++) {
        int32_t l = i.gathered++;
        evaluate_point(i, i.point[m.vars - 1][a], lane_word(i, l), &i.over[l]);
        i.target[l] = value + a;
        if (!i.ordered) {
            std::copy_n(lane_word(i, l), int64_t{m.n} * m.n, i.work);
            order_rows(i);
            i.ordered = true;
        }
        if (i.gathered == k_lanes && !flush_gathered(i)) return false;
    }
    return true;
}

// ---- adjoints ------------------------------------------------------------------------------------------

/// The elements of the adjoint at a point, whose image is given up.
static void take_adjoint(const PolyImages& i, uint32_t* image, const uint32_t* at) {
    int64_t size = int64_t{i.m->n} * i.m->n, place = at - i.value;
    word_adjoint(i.f, image, i.m->n);
    for (int64_t k = 0; k < size; k++) i.value[k * i.l->count + place] = image[k];
    poll_interrupt();
}

/// All points of the last variable; `value` tells where the first element's values stand.
static bool adjoint_line(PolyImages& i, int32_t reach, const uint32_t* value) {
    const PolyMatrix& m = *i.m;
    bool lanes = !i.f.table && m.n <= k_most_lane_evaluation;
    if (lanes) load_coefficients(i);
    uint32_t none[k_lanes];
    for (int32_t first = 0; first <= reach; first += k_lanes) {
        int32_t count = std::min(k_lanes, reach - first + 1);
        if (lanes) evaluate_words(i, lane_powers_from(i, first / k_lanes), count, none);
        for (int32_t l = 0; l < count; l++) {
            if (!lanes) evaluate_point(i, i.point[m.vars - 1][first + l], i.word, none);
            take_adjoint(i, lanes ? lane_word(i, l) : i.word, value + first + l);
        }
    }
    return true;
}

// ---- the other variables -------------------------------------------------------------------------------

/// The terms of the next stage at the point x of variable v.
static void put_value(PolyImages& i, int32_t v, uint32_t x) {
    const PolyStage& s = i.m->stage[v];
    uint32_t* out = i.coef[v + 1];
    std::fill_n(out, i.m->stage[v + 1].count, 0);
    ScratchMark mark = scratch_mark();
    auto* power = scratch_array<uint32_t>(int64_t{s.most} + 1);
    power[0] = 1;
    for (int32_t e = 1; e <= s.most; e++) power[e] = wf_mul(i.f, power[e - 1], x);
    const uint32_t* coef = i.coef[v];
    for (int64_t t = 0; t < s.count; t++)
        out[s.target[t]] = wf_add(i.f, out[s.target[t]], wf_mul(i.f, coef[t], power[s.exp[t]]));
    scratch_release(mark);
}

static bool part_of_lattice(PolyImages& i, int32_t v, int32_t budget, uint32_t* value) {
    int32_t reach = lattice_reach(*i.l, v, budget);
    if (v == i.m->vars - 1 && i.adjoint) return adjoint_line(i, reach, value);
    if (v == i.m->vars - 1) return i.gathers ? gather_line(i, reach, value) : last_variable(i, reach, value);
    for (int32_t a = 0; a <= reach; a++) {
        put_value(i, v, i.point[v][a]);
        if (!part_of_lattice(i, v + 1, budget - a, value)) return false;
        value += lattice_size(*i.l, v + 1, budget - a);
        poll_interrupt();
    }
    return true;
}

/// Consecutive elements of the field for each variable; some more for the last batch.
static void choose_points(PolyImages& i) {
    for (int32_t v = 0; v < i.m->vars; v++) {
        uint32_t start = wf_random_below(i.f.p);
        int64_t count = v == i.m->vars - 1 ? batches(*i.l) * k_lanes : int64_t{i.l->degree[v]} + 1;
        for (int64_t a = 0; a < count; a++)
            i.point[v][a] = static_cast<uint32_t>((start + static_cast<uint64_t>(a)) % i.f.p);
    }
}

/// True if the lines of the last variable would leave most of the sixteen lanes idle.
static bool lines_are_short(const Lattice& l) {
    if (l.vars == 1) return l.count < k_lanes / 2;
    Lattice rest;
    ScratchMark mark = scratch_mark();
    make_lattice(&rest, l.degree, l.vars - 1, l.total, INT64_MAX / 8);
    int64_t lines = rest.count;
    scratch_release(mark);
    return l.count < lines * k_lanes / 2;
}

static void read_numbers(PolyImages& i) {
    const PolyMatrix& m = *i.m;
    for (int64_t t = 0; t < m.terms; t++) {
        uint32_t v = wf_of_number(i.f, m.leaf[t]);
        i.coef[0][t] = !i.f.table && v >= i.f.p ? v % i.f.p : v;
        poll_every<4096>(t);
    }
}

bool interpolate_image(PolyImages* i, const WordField& f) {
    constexpr int32_t k_tries = 10;
    i->f = f;
    i->ordered = false;
    i->gathers = !i->adjoint && !f.table && i->m->n <= k_most_lane_rows && lines_are_short(*i->l);
    for (int32_t v = 0; v < i->m->vars; v++)
        if (static_cast<uint32_t>(i->l->degree[v]) >= f.p) return false;
    read_numbers(*i);
    for (int32_t k = 0; k < k_tries; k++) {
        choose_points(*i);
        i->power_batch = -1;
        i->gathered = 0;
        if (!part_of_lattice(*i, 0, i->l->total, i->value) || !flush_gathered(*i)) continue;
        int64_t results = i->adjoint ? int64_t{i->m->n} * i->m->n : 1;
        for (int64_t e = 0; e < results; e++)
            lattice_interpolate(*i->l, f, i->point, i->value + e * i->l->count);
        return true;
    }
    return false;
}
}  // namespace tolvex
