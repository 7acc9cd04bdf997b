// Operands, weights and points of gcd_of_few_terms.
#include "gcd/word_sparse_env.h"
#include "poly/dense_kernels.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
namespace {
constexpr int32_t k_weight_tries = 40;
constexpr int64_t k_image_degree = 1 << 16;  // in t
constexpr int64_t k_short_table = 64;

/// Weights that may serve.
struct Choice {
    int32_t weight[k_plan_levels], lead[k_plan_levels], group[k_plan_levels], hub, groups;
    int64_t radix[k_plan_levels], place[k_plan_levels], box;
    double cost;
};
}  // namespace

// ---- operands ----

static bool plan_whole(const WordGcdEnv& env, PackPlan* plan) {
    int32_t low[k_levels], high[k_levels];
    for (int32_t i = 0; i < env.levels; i++) {
        int32_t us = i < env.um.levels ? env.um.most[i] - env.um.least[i] : 0;
        int32_t vs = i < env.vm.levels ? env.vm.most[i] - env.vm.least[i] : 0;
        low[i] = env.monomial[i];
        high[i] = low[i] + maxx(us, vs);
    }
    return pack_plan(low, high, env.levels, plan);
}

static void read_operand(const PackPlan& plan, const polynode* p, const PackMeasure& m, SparseOperand* o) {
    PackTerms t = pack_leaves(p, plan, m.least, m.terms);
    o->count = t.count;
    o->leaf = t.leaf;
    o->exponent = scratch_array<int32_t>(t.count * plan.count);
    for (int64_t i = 0; i < t.count; i++) {
        int64_t rest = t.index[i];
        int32_t* row = o->exponent + i * plan.count;
        for (int32_t k = 0; k < plan.count; k++) {
            int64_t e = rest / plan.weight[k];
            rest -= e * plan.weight[k];
            row[k] = static_cast<int32_t>(e);
        }
    }
}

static int64_t t_degree(const int32_t* weight, const int32_t* row, int32_t n) {
    int64_t d = 0;
    for (int32_t k = 0; k < n; k++) d += int64_t{weight[k]} * row[k];
    return d;
}

// Orders the terms by degree in t. (Counting sort.)
static bool sort_operand(const SparseEnv& s, SparseOperand* o) {
    int32_t n = s.plan.count;
    auto* degree = scratch_array<int64_t>(o->count);
    int64_t low = INT64_MAX, high = INT64_MIN;
    for (int64_t i = 0; i < o->count; i++) {
        degree[i] = t_degree(s.weight, o->exponent + i * n, n);
        low = degree[i] < low ? degree[i] : low;
        high = degree[i] > high ? degree[i] : high;
    }
    if (high - low > k_image_degree) return false;
    o->degree = static_cast<int32_t>(high - low);
    o->start = scratch_array<int64_t>(int64_t{o->degree} + 3);
    memset(o->start, 0, (static_cast<size_t>(o->degree) + 3) * sizeof(int64_t));
    int64_t* next = o->start + 1;  // becomes the start of each degree while terms are placed
    for (int64_t i = 0; i < o->count; i++) next[degree[i] - low + 1]++;
    for (int32_t d = 0; d <= o->degree; d++) next[d + 1] += next[d];
    auto* leaf = scratch_array<const number*>(o->count);
    auto* exponent = scratch_array<int32_t>(o->count * n);
    for (int64_t i = 0; i < o->count; i++) {
        int64_t at = next[degree[i] - low]++;
        leaf[at] = o->leaf[i];
        memcpy(exponent + at * n, o->exponent + i * n, static_cast<size_t>(n) * sizeof(int32_t));
    }
    o->leaf = leaf;
    o->exponent = exponent;
    o->coefficient = scratch_array<uint32_t>(o->count);
    o->value = scratch_array<uint32_t>(o->count);
    o->step = scratch_array<uint32_t>(o->count);
    o->wide = scratch_array<uint32_t>(o->count);
    o->image = scratch_array<uint32_t>(int64_t{o->degree} + 1);
    return true;
}

// ---- weights ----

static int32_t bound_of(const SparseEnv& s, int32_t k) { return s.env->bound[s.plan.level[k]]; }

// The single term of the leading coefficient in t, apart from levels that the gcd is free of; nil: there are
// more.
static const int32_t* single_lead(const SparseEnv& s, const SparseOperand& o, const int32_t* weight,
                                  int64_t* span) {
    int32_t n = s.plan.count;
    const int32_t* best = nullptr;
    int64_t low = INT64_MAX, high = INT64_MIN;
    bool single = true;
    for (int64_t i = 0; i < o.count; i++) {
        const int32_t* row = o.exponent + i * n;
        int64_t d = t_degree(weight, row, n);
        low = d < low ? d : low;
        if (d < high) continue;
        if (d > high) {
            high = d;
            best = row;
            single = true;
            continue;
        }
        for (int32_t k = 0; k < n && single; k++) single = bound_of(s, k) == 0 || row[k] == best[k];
    }
    *span = high - low;
    return single ? best : nullptr;
}

// Packs the levels into groups, the exponents of a group into one number.
static bool make_groups(const SparseEnv& s, int64_t most, Choice* c) {
    int64_t box = 1;
    c->groups = 1;
    c->box = 1;
    for (int32_t k = 0; k < s.plan.count; k++) {
        c->radix[k] = c->place[k] = 0;
        c->group[k] = 0;
        if (bound_of(s, k) == 0) c->lead[k] = 0;
        if (k == c->hub || bound_of(s, k) == 0) continue;
        c->radix[k] = int64_t{bound_of(s, k)} + c->lead[k] + 1;
        if (c->radix[k] > most) return false;
        if (c->radix[k] > most / box) {
            c->groups++;
            box = 1;
        }
        c->group[k] = c->groups - 1;
        c->place[k] = box;
        box *= c->radix[k];
        c->box = maxx64(c->box, box);
    }
    return true;
}

// Rates the weights w; false: they do not serve.
static bool rate(const SparseEnv& s, const int32_t* w, int64_t most, Choice* c) {
    int64_t span[2], gcd_degree = 0;
    const int32_t* lead[2];
    for (int side = 0; side < 2; side++) lead[side] = single_lead(s, s.op[side], w, &span[side]);
    if ((lead[0] == nullptr && lead[1] == nullptr) || maxx64(span[0], span[1]) > k_image_degree) return false;
    int64_t widest = 0;
    c->hub = -1;
    for (int32_t k = 0; k < s.plan.count; k++) {
        c->weight[k] = w[k];
        int32_t b = bound_of(s, k);
        c->lead[k] = b;
        for (const int32_t* row : lead)
            if (row != nullptr) c->lead[k] = minn(c->lead[k], row[k]);
        gcd_degree += int64_t{w[k] < 0 ? -w[k] : w[k]} * b;
        int64_t radix = int64_t{b} + c->lead[k] + 1;
        if ((w[k] == 1 || w[k] == -1) && radix > widest) {
            widest = radix;
            c->hub = k;
        }
    }
    if (c->hub < 0) return false;
    c->lead[c->hub] = 0;
    if (!make_groups(s, most, c)) return false;
    auto work = static_cast<double>(s.op[0].count + s.op[1].count + span[0] * span[1] / 2 + 50);
    c->cost = work / static_cast<double>(gcd_degree + 1) * (c->groups == 1 ? 2 : 2 + c->groups);
    return true;
}

static void keep_better(const SparseEnv& s, const int32_t* w, int64_t most, Choice* best) {
    Choice c;
    if (rate(s, w, most, &c) && (best->hub < 0 || c.cost < best->cost)) *best = c;
}

// Single levels upwards and downwards, all levels together, then small weights at random.
static bool choose_weights(SparseEnv& s, int64_t most) {
    int32_t w[k_plan_levels];
    Choice best;
    best.hub = -1;
    int32_t n = s.plan.count;
    for (int32_t sign = 1; sign >= -1; sign -= 2) {
        for (int32_t k = 0; k < n; k++) w[k] = bound_of(s, k) > 0 ? sign : 0;
        keep_better(s, w, most, &best);
    }
    for (int32_t j = 0; j < n; j++) {
        if (bound_of(s, j) == 0) continue;
        for (int32_t sign = 1; sign >= -1; sign -= 2) {
            for (int32_t k = 0; k < n; k++) w[k] = k == j ? sign : 0;
            keep_better(s, w, most, &best);
        }
    }
    WordField f = word_field_prime(k_halving_prime);
    for (int32_t tries = 0; tries < k_weight_tries && best.hub < 0; tries++) {
        int32_t range = 1 + tries / 10;
        for (int32_t k = 0; k < n; k++) {
            auto r = static_cast<int32_t>(wf_random_unit(f) % static_cast<uint32_t>(2 * range + 1));
            w[k] = bound_of(s, k) > 0 ? r - range : 0;
        }
        keep_better(s, w, most, &best);
    }
    if (best.hub < 0) return false;
    memcpy(s.weight, best.weight, sizeof s.weight);
    memcpy(s.lead, best.lead, sizeof s.lead);
    s.hub = best.hub;
    memcpy(s.group, best.group, sizeof s.group);
    memcpy(s.radix, best.radix, sizeof s.radix);
    memcpy(s.place, best.place, sizeof s.place);
    s.groups = best.groups;
    s.box = best.box;
    return true;
}

bool sparse_open(SparseEnv& s, int64_t most) {
    if (!plan_whole(*s.env, &s.plan) || s.plan.count < 2) return false;
    read_operand(s.plan, s.env->u, s.env->um, &s.op[0]);
    read_operand(s.plan, s.env->v, s.env->vm, &s.op[1]);
    if (!choose_weights(s, most)) return false;
    s.degree = INT32_MAX;
    return sort_operand(s, &s.op[0]) && sort_operand(s, &s.op[1]);
}

// ---- points ----

void sparse_load(SparseEnv& s, const WordField& f) {
    for (SparseOperand& o : s.op)
        for (int64_t i = 0; i < o.count; i++) o.coefficient[i] = wf_of_number(f, o.leaf[i]);
}

static uint32_t* power_table(const WordField& f, uint32_t x, int64_t entries) {
    auto* t = scratch_array<uint32_t>(entries);
    t[0] = 1;
    for (int64_t e = 1; e < entries; e++) t[e] = wf_mul(f, t[e - 1], x);
    return t;
}

static void make_tables(SparseEnv& s, const WordField& f) {
    for (int32_t k = 0; k < s.plan.count; k++) {
        s.point_power[k] = s.ratio_power[k] = nullptr;
        int64_t entries = maxx64(s.plan.radix[k], s.radix[k]);
        if (entries > k_short_table && entries > (s.op[0].count + s.op[1].count) / 8) continue;
        if (s.point[k] != 1) s.point_power[k] = power_table(f, s.point[k], entries);
        if (s.ratio[k] != 1) s.ratio_power[k] = power_table(f, s.ratio[k], entries);
    }
}

void sparse_box_point(SparseEnv& s, const WordField& f, uint32_t base) {
    for (int32_t k = 0; k < s.plan.count; k++) {
        s.point[k] = k == s.hub ? 1 : wf_random_unit(f);
        s.ratio[k] = s.place[k] == 0 ? 1
                     : s.groups > 1  ? wf_random_unit(f)
                                     : wf_power(f, base, static_cast<uint64_t>(s.place[k]));
    }
    make_tables(s, f);
}

void sparse_shift_point(SparseEnv& s, const WordField& f, int32_t group, uint32_t base) {
    for (int32_t k = 0; k < s.plan.count; k++)
        if (s.place[k] != 0 && s.group[k] == group)
            s.point[k] = wf_mul(f, s.point[k], wf_power(f, base, static_cast<uint64_t>(s.place[k])));
    make_tables(s, f);
}

void sparse_free_point(SparseEnv& s, const WordField& f) {
    for (int32_t k = 0; k < s.plan.count; k++) {
        s.point[k] = k == s.hub ? 1 : wf_random_unit(f);
        s.ratio[k] = s.place[k] == 0 ? 1 : wf_random_unit(f);
    }
    make_tables(s, f);
}

void sparse_monomial(const SparseEnv& s, const WordField& f, const int32_t* exponent, uint32_t* start,
                     uint32_t* ratio) {
    uint32_t a = 1, b = 1;
    for (int32_t k = 0; k < s.plan.count; k++) {
        int32_t e = exponent[k];
        if (e == 0 || k == s.hub) continue;
        auto power = static_cast<uint64_t>(e);
        if (s.point[k] != 1)
            a = wf_mul(f, a, s.point_power[k] ? s.point_power[k][e] : wf_power(f, s.point[k], power));
        if (s.ratio[k] != 1)
            b = wf_mul(f, b, s.ratio_power[k] ? s.ratio_power[k][e] : wf_power(f, s.ratio[k], power));
    }
    *start = a;
    *ratio = b;
}

void sparse_start(SparseEnv& s, const WordField& f) {
    for (SparseOperand& o : s.op)
        for (int64_t i = 0; i < o.count; i++) {
            uint32_t start;
            sparse_monomial(s, f, o.exponent + i * s.plan.count, &start, &o.step[i]);
            o.value[i] = wf_mul(f, start, o.coefficient[i]);
            if (!f.table) o.wide[i] = fixed_factor(o.step[i], f.p).quotient;
        }
    sparse_monomial(s, f, s.lead, &s.monomial_value, &s.monomial_step);
}

WIDE_VECTORS static void times_fixed(uint32_t* x, const uint32_t* w, const uint32_t* wide, int64_t n,
                                     uint32_t p) {
    for (int64_t i = 0; i < n; i++) x[i] = fixed_mult(x[i], FixedFactor{w[i], wide[i]}, p);
}

void sparse_advance(SparseEnv& s, const WordField& f) {
    for (SparseOperand& o : s.op) {
        if (!f.table) times_fixed(o.value, o.step, o.wide, o.count, f.p);
        for (int64_t i = 0; i < o.count && f.table; i++) o.value[i] = wf_mul(f, o.value[i], o.step[i]);
    }
    s.monomial_value = wf_mul(f, s.monomial_value, s.monomial_step);
}

static uint32_t table_sum(const WordField& f, const uint32_t* a, int64_t n) {
    uint32_t sum = 0;
    for (int64_t i = 0; i < n; i++) sum = wf_add(f, sum, a[i]);
    return sum;
}

int32_t sparse_image(SparseEnv& s, const WordField& f, uint32_t** g) {
    for (SparseOperand& o : s.op)
        for (int32_t d = 0; d <= o.degree; d++) {
            if (f.table) {
                o.image[d] = table_sum(f, o.value + o.start[d], o.start[d + 1] - o.start[d]);
                continue;
            }
            uint64_t sum = 0;
            for (int64_t i = o.start[d]; i < o.start[d + 1]; i++) sum += o.value[i];
            o.image[d] = wf_reduce(f, sum);
        }
    if (s.op[0].image[s.op[0].degree] == 0 && s.op[1].image[s.op[1].degree] == 0) return -1;
    return wf_gcd(f, s.op[0].image, s.op[0].degree, s.op[1].image, s.op[1].degree, g);
}
}  // namespace tolvex
