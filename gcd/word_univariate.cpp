// Operands in one variable: one image modulo a word prime, and the cofactors modulo the same prime. When g q
// and u agree modulo p and the coefficients of both are too small to differ by a multiple of p, they are
// equal: that proves the division without integers.
#include "gcd/word_gcd.h"
#include "numbers/primes.h"
#include "poly/dense_divide.h"
#include "poly/dense_internal.h"
#include "poly/poly_basic.h"
#include "poly/poly_scale.h"
#include "storage/scratch.h"

#include <numeric>
namespace tolvex {
namespace {
constexpr int64_t k_dense_degree = 1 << 22;

/// One operand over Z.
struct WordOperand {
    PackTerms terms;    // words
    int64_t content;    // positive
    uint64_t height;    // the greatest magnitude
    uint32_t* residue;  // dense, degree + 1 entries
    int32_t degree;
};
}  // namespace

int32_t only_level(const WordGcdEnv& env) {
    int32_t only = -1;
    for (int32_t i = 0; i < env.levels; i++) {
        bool in_u = i < env.um.levels && env.um.most[i] != env.um.least[i];
        bool in_v = i < env.vm.levels && env.vm.most[i] != env.vm.least[i];
        if (!in_u && !in_v) continue;
        if (only >= 0 || !in_u || !in_v) return -1;
        only = i;
    }
    if (only < 0) return -1;
    int64_t span = maxx64(int64_t{env.um.most[only]} - env.um.least[only],
                          int64_t{env.vm.most[only]} - env.vm.least[only]);
    return span <= k_dense_degree ? only : -1;
}

bool plan_of_level(const WordGcdEnv& env, int32_t level, PackPlan* plan) {
    int32_t low[k_levels], high[k_levels];
    for (int32_t i = 0; i < env.levels; i++) low[i] = high[i] = env.monomial[i];
    high[level] += maxx(env.um.most[level] - env.um.least[level], env.vm.most[level] - env.vm.least[level]);
    return pack_plan(low, high, env.levels, plan);
}

static uint32_t* dense_copy(const uint32_t* a, int32_t degree) {
    auto* c = scratch_array<uint32_t>(int64_t{degree} + 1);
    scratch_copy(c, a, (static_cast<size_t>(degree) + 1) * sizeof(uint32_t));
    return c;
}

// ---- over a field ----

static uint32_t* dense_residues(const PackTerms& t, int32_t* degree) {
    *degree = static_cast<int32_t>(t.index[0]);
    auto* a = scratch_array<uint32_t>(t.index[0] + 1);
    scratch_clear(a, static_cast<size_t>(t.index[0] + 1) * sizeof(uint32_t));
    for (int64_t i = 0; i < t.count; i++) a[t.index[i]] = t.residue[i];
    return a;
}

static void univariate_over_field(WordGcdEnv& env, const PackPlan& plan, polyptrr g) {
    WordField f = word_field_ring();
    int32_t du, dv;
    uint32_t* u = dense_residues(pack_residues(env.u, plan, env.um.least, env.um.terms, f), &du);
    uint32_t* v = dense_residues(pack_residues(env.v, plan, env.vm.least, env.vm.terms, f), &dv);
    uint32_t* result;
    int32_t degree = wf_gcd(f, u, du, v, dv, &result);
    PackTerms out = {
        0, scratch_array<int64_t>(int64_t{degree} + 1), {scratch_array<uint32_t>(int64_t{degree} + 1)}};
    for (int32_t e = degree; e >= 0; e--) {
        if (result[e] == 0) continue;
        out.index[out.count] = e;
        out.residue[out.count++] = result[e];
    }
    *g = pack_tree(plan, nullptr, out.index, out.count, leaf_of_residue, &out);
}

// ---- over Z ----

static uint32_t residue_of_word(const WordField& f, int64_t w) {
    uint32_t r = wf_reduce(f, static_cast<uint64_t>(w < 0 ? -w : w));
    return w < 0 ? wf_neg(f, r) : r;
}

// False: the prime divides the leading number.
static bool read_words(const PackPlan& plan, const polynode* p, const PackMeasure& m, const WordField& f,
                       WordOperand* o) {
    o->terms = pack_words(p, plan, m.least, m.terms);
    o->degree = static_cast<int32_t>(o->terms.index[0]);
    o->residue = scratch_array<uint32_t>(int64_t{o->degree} + 1);
    scratch_clear(o->residue, (static_cast<size_t>(o->degree) + 1) * sizeof(uint32_t));
    o->content = 0;
    o->height = 0;
    for (int64_t i = 0; i < o->terms.count; i++) {
        int64_t w = o->terms.word[i];
        auto magnitude = static_cast<uint64_t>(w < 0 ? -w : w);
        if (magnitude > o->height) o->height = magnitude;
        if (o->content != 1) o->content = std::gcd(o->content, w);
        o->residue[o->terms.index[i]] = residue_of_word(f, w);
    }
    return o->residue[o->degree] != 0;
}

// a[0..degree] times scale as symmetric residues; returns the greatest magnitude.
static int64_t lift(const WordField& f, const uint32_t* a, int32_t degree, uint32_t scale, int32_t* out) {
    int64_t most = 0;
    for (int32_t i = 0; i <= degree; i++) {
        uint32_t r = wf_mul(f, a[i], scale);
        int64_t s = r > f.p / 2 ? int64_t{r} - f.p : int64_t{r};
        out[i] = static_cast<int32_t>(s);
        most = maxx64(most, s < 0 ? -s : s);
    }
    return most;
}

// Whether g, which has the height given and the leading number lead, divides the operand: g is `monic` times
// lead modulo p.
static bool divides_by_image(const WordField& f, const WordOperand& o, const uint32_t* monic, int32_t degree,
                             uint32_t lead, int64_t height) {
    uint32_t* rest = dense_copy(o.residue, o.degree);
    auto* q = scratch_array<uint32_t>(int64_t{o.degree} - degree + 1);
    if (wf_div_mod(f, rest, o.degree, monic, degree, 1, q) >= 0) return false;
    auto* lifted = scratch_array<int32_t>(int64_t{o.degree} - degree + 1);
    int64_t most = lift(f, q, o.degree - degree, wf_inverse(f, lead), lifted);
    auto terms = static_cast<uint64_t>(minn(degree, o.degree - degree) + 1);
    unsigned __int128 product =
        static_cast<unsigned __int128>(terms) * static_cast<uint64_t>(most) * static_cast<uint64_t>(height);
    return product + o.height < f.p;
}

// The primitive polynomial whose multiple the scaled image is; its height.
static int64_t make_primitive(int32_t* g, int32_t degree, int64_t height) {
    int64_t content = 0;
    for (int32_t i = degree; i >= 0 && content != 1; i--) content = std::gcd(content, int64_t{g[i]});
    if (content == 1) return height;
    for (int32_t i = 0; i <= degree; i++) g[i] = static_cast<int32_t>(g[i] / content);
    return height / content;
}

static poly tree_of_words(const PackPlan& plan, const int32_t* g, int32_t degree, int64_t content) {
    PackTerms out = {0, scratch_array<int64_t>(int64_t{degree} + 1), {nullptr}};
    out.word = scratch_array<int64_t>(int64_t{degree} + 1);
    for (int32_t e = degree; e >= 0; e--) {
        if (g[e] == 0) continue;
        out.index[out.count] = e;
        out.word[out.count++] = g[e];
    }
    poly p = pack_tree(plan, nullptr, out.index, out.count, leaf_of_word, &out);
    if (content == 1) return p;
    number c = {};
    out.word[0] = content;
    leaf_of_word(&out, 0, &c);
    num_poly_mult(&p, &c);
    special_free(&c);
    return p;
}

static bool univariate_over_integers(WordGcdEnv& env, int32_t level, const PackPlan& plan, polyptrr g) {
    WordField f = word_field_prime(static_cast<uint32_t>(lrgpme[k_lrg_primes - 1]));
    WordOperand u, v;
    if (!read_words(plan, env.u, env.um, f, &u) || !read_words(plan, env.v, env.vm, f, &v)) return false;
    uint32_t *a = dense_copy(u.residue, u.degree), *b = dense_copy(v.residue, v.degree), *monic;
    int32_t degree = wf_gcd(f, a, u.degree, b, v.degree, &monic);
    env.bound[level] = degree;
    if (degree == 0) return false;
    int64_t lead = std::gcd(u.terms.word[0] / u.content, v.terms.word[0] / v.content);
    auto* lifted = scratch_array<int32_t>(int64_t{degree} + 1);
    int64_t height = lift(f, monic, degree, residue_of_word(f, lead), lifted);
    if (lifted[degree] <= 0) return false;
    height = make_primitive(lifted, degree, height);
    auto top = static_cast<uint32_t>(lifted[degree]);
    if (!divides_by_image(f, u, monic, degree, top, height) ||
        !divides_by_image(f, v, monic, degree, top, height))
        return false;
    *g = tree_of_words(plan, lifted, degree, std::gcd(u.content, v.content));
    return true;
}

bool univariate_gcd(WordGcdEnv& env, int32_t level, polyptrr g) {
    PackPlan plan;
    if (!plan_of_level(env, level, &plan)) return false;
    ScratchMark mark = scratch_mark();
    bool found = modularmode;
    if (modularmode)
        univariate_over_field(env, plan, g);
    else
        found = univariate_over_integers(env, level, plan, g);
    scratch_release(mark);
    return found;
}
}  // namespace tolvex
