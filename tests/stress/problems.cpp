#include "tests/stress/problems.h"

#include "gcd/gcd_modes.h"
#include "gcd/gcd_stash.h"
#include "gcd/polygcd_env.h"
#include "numbers/num_compare.h"
#include "numbers/number_modes.h"
#include "numbers/primes.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
#include "poly/poly_mult.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"

#include <algorithm>
namespace tolvex::test {
const std::vector<StressRing> stress_rings = {
    {{0, false, "Z"}, false},           {{2, false, "Z/2"}, false},
    {{3, false, "Z/3"}, false},         {{5, false, "Z/5"}, false},
    {{0, false, "Z"}, false},           {{7, false, "Z/7"}, false},
    {{13, false, "Z/13"}, false},       {{101, false, "Z/101"}, false},
    {{0, false, "Z"}, false},           {{997, false, "Z/997"}, false},
    {{1009, false, "Z/1009"}, false},   {{3001, false, "Z/3001"}, false},
    {{0, false, "Z"}, false},           {{16087, false, "Z/16087"}, false},
    {{65521, false, "Z/65521"}, false}, {{65537, false, "Z/65537"}, false},
    {{0, false, "Z"}, false},           {{2147483629, false, "Z/2147483629"}, false},
    {{256, true, "GF(2^8)"}, false},    {{65536, true, "GF(2^16)"}, false},
    {{0, false, "Z"}, false},           {{4, false, "Z/4"}, true},
    {{6, false, "Z/6"}, true},          {{36000, false, "Z/36000"}, true},
    {{1 << 30, false, "Z/2^30"}, true}, {{2147483646, false, "Z/2147483646"}, true},
};

// ---- parts ---------------------------------------------------------------------------------------------

namespace {
/// What a random part looks like; bit 0 of the mask is level 1.
struct Form {
    uint32_t mask = 1;
    int32_t terms = 3;
    int32_t max_exp = 2;
    Coefs coefs = Coefs::small;
};
}  // namespace

static poly random_leaf(Rng& rng, Coefs coefs) {
    poly p = nullptr;
    poly_set(1, &p);
    random_number(rng, coefs, p->ncoef);
    if (poly_iszero(p)) poly_set(1, &p);
    return p;
}

static poly monomial(Rng& rng, const Form& form, const int32_t* e) {
    poly p = random_leaf(rng, form.coefs);
    for (int32_t level = k_stress_variables - 1; level >= 0; level--) {
        if (e[level] == 0 && is_number(p)) continue;
        poly t;
        new_term(&t, e[level], p);
        p = t;
    }
    return p;
}

// Never 0.
static poly part(Rng& rng, const Form& form) {
    poly p = nullptr;
    poly_set(0, &p);
    for (int32_t i = 0; i < form.terms; i++) {
        int32_t e[k_stress_variables] = {};
        for (int32_t k = 0; k < k_stress_variables; k++)
            if (form.mask >> k & 1) e[k] = random_int(rng, 0, form.max_exp);
        best_poly_add(p, monomial(rng, form, e), &p);
    }
    if (poly_iszero(p)) poly_set(1, &p);
    return p;
}

static poly constant(int32_t n) {
    poly p = nullptr;
    poly_set(modularmode && !finf ? n % modulus : n, &p);
    if (poly_iszero(p)) poly_set(1, &p);
    return p;
}

static void times(polyptrr p, poly f) {
    poly_mult(*p, f, p, polynames);
    free_poly(&f);
}

static void combine(poly a, poly b, poly c, StressProblem* p) {
    poly_mult(a, c, &p->u, polynames);
    poly_mult(b, c, &p->v, polynames);
    free_poly(&a), free_poly(&b), free_poly(&c);
}

static uint32_t levels(int32_t n) { return (1u << n) - 1; }

static uint32_t some_levels(Rng& rng, int32_t n) {
    uint32_t mask = static_cast<uint32_t>(rng()) & levels(n);
    return mask != 0 ? mask : 1;
}

static int32_t scaled(Rng& rng, int32_t size, int32_t low, int32_t high) {
    return random_int(rng, low, high) * (size == 0 ? 1 : size == 1 ? 3 : 10);
}

static Form usual(Rng& rng, int32_t size) {
    return {levels(random_int(rng, 1, 4)), scaled(rng, size, 2, 5), random_int(rng, 1, 3) + size,
            Coefs::small};
}

void free_problem(StressProblem* p) {
    free_poly(&p->u);
    free_poly(&p->v);
}

// ---- families ------------------------------------------------------------------------------------------

static void planted(Rng& rng, int32_t size, StressProblem* p) {
    Form form = usual(rng, size);
    combine(part(rng, form), part(rng, form), part(rng, form), p);
}

static void coprime(Rng& rng, int32_t size, StressProblem* p) {
    Form form = usual(rng, size);
    form.terms *= 2;
    combine(part(rng, form), part(rng, form), constant(random_int(rng, 1, 9)), p);
}

static void contents(Rng& rng, int32_t size, StressProblem* p) {
    Form form = usual(rng, size), deep = form;
    deep.mask = form.mask << 1 | 2;
    poly a = part(rng, form), b = part(rng, form);
    if (random_int(rng, 0, 1)) times(&a, part(rng, deep));
    if (random_int(rng, 0, 1)) times(&b, part(rng, deep));
    combine(a, b, part(rng, deep), p);
}

static void contents_of_many_levels(Rng& rng, int32_t size, StressProblem* p) {
    poly f[3] = {constant(1), constant(1), constant(1)};
    for (uint32_t mask : {1u, 2u, 3u, 7u, 8u, 12u, 15u})
        for (poly& g : f)
            if (random_int(rng, 0, 1)) times(&g, part(rng, {mask, 2 + size, 2, Coefs::small}));
    combine(f[0], f[1], f[2], p);
}

static void divisor(Rng& rng, int32_t size, StressProblem* p) {
    Form form = usual(rng, size);
    combine(part(rng, form), constant(random_int(rng, 1, 30)), part(rng, form), p);
    if (random_int(rng, 0, 1)) std::swap(p->u, p->v);
}

static void associated(Rng& rng, int32_t size, StressProblem* p) {
    combine(random_leaf(rng, Coefs::small), random_leaf(rng, Coefs::small), part(rng, usual(rng, size)), p);
}

static void with_a_number(Rng& rng, int32_t size, StressProblem* p) {
    Coefs coefs = random_int(rng, 0, 1) ? Coefs::digit : Coefs::small;
    Form form = usual(rng, size);
    combine(random_leaf(rng, coefs), part(rng, form), random_leaf(rng, coefs), p);
    if (random_int(rng, 0, 1)) std::swap(p->u, p->v);
}

static void one_term(Rng& rng, int32_t size, StressProblem* p) {
    Form single = {some_levels(rng, 5), 1, 5, Coefs::small};
    combine(part(rng, usual(rng, size)), part(rng, single), part(rng, single), p);
}

static void powers_of_variables(Rng& rng, int32_t size, StressProblem* p) {
    Form form = usual(rng, size);
    poly f[3];
    for (poly& g : f) {
        g = part(rng, form);
        times(&g, part(rng, {some_levels(rng, 4), 1, 6, Coefs::ones}));
    }
    combine(f[0], f[1], f[2], p);
}

static void negative_exponents(Rng& rng, int32_t size, StressProblem* p) {
    laurent = 1;
    Shape shape = {random_int(rng, 1, 3), scaled(rng, size, 2, 4), 3, Coefs::small, -3};
    combine(random_nonzero_poly(rng, shape), random_nonzero_poly(rng, shape), random_nonzero_poly(rng, shape),
            p);
    p->negative_exponents = true;
}

// Variables that only one operand has; the gcd has those of both alone.
static void missing_variables_of(Rng& rng, int32_t size, StressProblem* p) {
    uint32_t a = some_levels(rng, 8), b = some_levels(rng, 8);
    int32_t terms = scaled(rng, size, 3, 6);
    combine(part(rng, {a, terms, 2, Coefs::small}), part(rng, {b, terms, 2, Coefs::small}),
            part(rng, {a & b, 3, 2, Coefs::small}), p);
}

static void disjoint_variables(Rng& rng, int32_t size, StressProblem* p) {
    uint32_t a = some_levels(rng, 6);
    int32_t terms = scaled(rng, size, 2, 6);
    combine(part(rng, {a, terms, 3, Coefs::small}), part(rng, {~a & levels(6), terms, 3, Coefs::small}),
            constant(random_int(rng, 1, 12)), p);
}

static void dense_in_one(Rng& rng, int32_t size, StressProblem* p) {
    int32_t top = size == 0 ? 12 : size == 1 ? 60 : 400;
    Coefs coefs = random_int(rng, 0, 3) ? Coefs::small : Coefs::two_digits;
    poly a = dense_poly(rng, random_int(rng, 0, top), coefs),
         b = dense_poly(rng, random_int(rng, 0, top), coefs);
    combine(a, b, dense_poly(rng, random_int(rng, 0, top), coefs), p);
}

static void dense_in_several(Rng& rng, int32_t size, StressProblem* p) {
    int32_t n = random_int(rng, 2, 3), top = (n == 2 ? 3 : 2) + size, box = 1;
    for (int32_t i = 0; i < n; i++) box *= top + 1;
    Form form = {levels(n), box, top, Coefs::small};
    combine(part(rng, form), part(rng, form), part(rng, form), p);
}

static void sparse_of_many(Rng& rng, int32_t size, StressProblem* p) {
    Form form = {levels(random_int(rng, 5, 10)), scaled(rng, size, 2, 4), 2, Coefs::small};
    if (size == 2) form.terms /= 3;
    combine(part(rng, form), part(rng, form), part(rng, form), p);
}

static void sparse_of_high_degree(Rng& rng, int32_t size, StressProblem* p) {
    int32_t n = random_int(rng, 1, 3);
    Form form = {levels(n), scaled(rng, size, 2, 3), n == 1 ? 300 : n == 2 ? 20 : 8, Coefs::small};
    if (size == 2) form.terms /= 2;
    combine(part(rng, form), part(rng, form), part(rng, form), p);
}

static void long_numbers(Rng& rng, int32_t size, StressProblem* p) {
    Form form = usual(rng, size);
    form.coefs = Coefs::huge;
    combine(part(rng, form), part(rng, form), part(rng, form), p);
}

// Contents of numbers that come from the tables of primes: images modulo these are bad or unlucky.
static void multiples_of_primes(Rng& rng, int32_t size, StressProblem* p) {
    Form form = usual(rng, size);
    poly f[3];
    for (poly& g : f) {
        g = part(rng, form);
        poly n = constant(prime[random_int(rng, 0, 90)].lint), h = part(rng, form);
        times(&h, n);
        best_poly_add(g, h, &g);
        if (poly_iszero(g)) poly_set(1, &g);
    }
    combine(f[0], f[1], f[2], p);
}

static void gaps(Rng& rng, int32_t size, StressProblem* p) {
    Form form = usual(rng, size);
    int32_t k = random_int(rng, 2, 5);
    poly f[3];
    for (poly& g : f) {
        g = part(rng, form);
        if (!is_number(g))
            for (poly t = g; t != nullptr; t = t->next) t->exp *= k;
    }
    combine(f[0], f[1], f[2], p);
}

static void repeated_factors(Rng& rng, int32_t size, StressProblem* p) {
    Form form = usual(rng, 0);
    poly c = part(rng, form), power = nullptr;
    poly_mult(c, c, &power, polynames);
    form.terms += 2 * size;
    poly a = part(rng, form), b = part(rng, form);
    poly_mult(a, power, &a, polynames);
    if (random_int(rng, 0, 1)) poly_mult(power, c, &power, polynames);
    times(&b, power);
    combine(a, b, c, p);
}

// Leading coefficients that vanish at many small points, and have factors in common.
static void vanishing_leads(Rng& rng, int32_t size, StressProblem* p) {
    poly lead = constant(1);
    for (int32_t k = random_int(rng, 1, 4); k > 0; k--) {
        poly root = part(rng, {2, 1, 1, Coefs::ones}), n = constant(random_int(rng, 1, 5));
        best_poly_add(root, n, &root);
        if (!poly_iszero(root))
            times(&lead, root);
        else
            free_poly(&root);
    }
    Form form = usual(rng, size);
    form.mask |= 3;
    poly f[3];
    for (poly& g : f) {
        int32_t e[k_stress_variables] = {form.max_exp + random_int(rng, 1, 2)};
        poly top = monomial(rng, form, e);
        poly_mult(top, lead, &top, polynames);
        g = part(rng, form);
        best_poly_add(g, top, &g);
        if (poly_iszero(g)) poly_set(1, &g);
    }
    free_poly(&lead);
    combine(f[0], f[1], f[2], p);
}

static void linear_forms(Rng& rng, int32_t size, StressProblem* p) {
    poly f[3] = {constant(1), constant(1), constant(1)};
    int32_t n = random_int(rng, 2, 5);
    for (poly& g : f)
        for (int32_t k = random_int(rng, 1, 2 + size); k > 0; k--)
            times(&g, part(rng, {levels(n), n + 1, 1, Coefs::small}));
    combine(f[0], f[1], f[2], p);
}

// x^m - 1 and the like: gcds of large degree between operands of few terms.
static void binomials(Rng& rng, int32_t size, StressProblem* p) {
    int32_t n = random_int(rng, 1, 2), most = size == 0 ? 30 : size == 1 ? 150 : 700;
    for (poly* q : {&p->u, &p->v}) {
        int32_t m = random_int(rng, 1, most / n), e[k_stress_variables] = {m, n == 2 ? m : 0};
        *q = term_poly(1, e, k_stress_variables);
        best_poly_sub(*q, constant(1), q);
    }
}

const std::vector<StressFamily> stress_families = {
    {"planted", planted},
    {"coprime", coprime},
    {"contents", contents},
    {"level contents", contents_of_many_levels},
    {"divisor", divisor},
    {"associated", associated},
    {"number", with_a_number},
    {"one term", one_term},
    {"powers", powers_of_variables},
    {"negative exps", negative_exponents},
    {"missing", missing_variables_of},
    {"disjoint", disjoint_variables},
    {"dense 1", dense_in_one},
    {"dense 2, 3", dense_in_several},
    {"sparse, many", sparse_of_many},
    {"high degree", sparse_of_high_degree},
    {"long numbers", long_numbers},
    {"primes", multiples_of_primes},
    {"gaps", gaps},
    {"repeated", repeated_factors},
    {"vanishing", vanishing_leads},
    {"linear forms", linear_forms},
    {"binomials", binomials},
};

// ---- settings ------------------------------------------------------------------------------------------

void default_settings() {
    gcd_counters_clear();
    gcd_fault = nullptr;
    initial_memory = 1 << 26;  // room for the stash
    word_engines = chinhensel = try_rat = rat_yes = hen_check = 1;
    trial_cutoff = 25;
    mod_method_diff = 6;
    gcd_stash_cutoff = 200;
    small_gcd_stash_cut = 100;
    fast_gcd_size = 25000;
    poly_cutoff = 80;
    laurent = 0;
    if (lookupgcd > 0) free_gcd_stash();
    gcd_stash_outdated();
    lookupgcd = 0;
}

namespace {
/// Writes down what has been chosen.
struct Chooser {
    Rng& rng;
    std::string text;
    template <class Value> void choose(const char* name, Value& value, const std::vector<int32_t>& from) {
        value = static_cast<Value>(from[rng() % from.size()]);
        text += std::string(" ") + name + "=" + std::to_string(value);
    }
};
}  // namespace

namespace {
/// What the engines on records may come to.
struct Costs {
    double remainders;  // digits of the last members of a remainder sequence times its length
    double images;      // points of evaluation in all levels but the first
};
}  // namespace

// The last remainders fill a box of coefficients whose degrees, and over Z whose lengths, are those of the
// operands times their degrees in the main variable, which may be any.
static Costs costs_of(poly u, poly v) {
    double main = 0, box = 1, images = 1;
    std::vector<int32_t> degree;
    for (int32_t level = 1; level <= k_stress_variables; level++) {
        int32_t du = k_no_degree, dv = k_no_degree;
        max_degree(u, level, &du);
        max_degree(v, level, &dv);
        degree.push_back(std::max(du, 0) + std::max(dv, 0));
        main = std::max(main, static_cast<double>(std::max(du, dv)));
        if (du > 0 && dv > 0) images *= std::min(du, dv) + 1;
    }
    for (int32_t d : degree) box *= 1 + main * d;
    double digits = modularmode ? 1 : 1 + std::max(max_digits(u), max_digits(v)) / 28.0 * main;
    return {box * digits, images * digits};
}

static int32_t fault_rate, fault_limit;  // one call in so many goes wrong, up to so many
static Rng fault_rng;

// Times x + c, as an unlucky point would have it.
static void spoil(polyptrr g, polypt pt) {
    if (pt == nullptr || fault_limit == 0 || random_int(fault_rng, 1, fault_rate) != 1) return;
    fault_limit--;
    poly x = nullptr;
    base_poly(&x, pt->next == nullptr ? 1 : random_int(fault_rng, 1, 2));
    best_poly_add(x, constant(random_int(fault_rng, 1, 3)), &x);
    times(g, x);
    gcd_unproved = 1;
}

std::string permuted_settings(const StressProblem& p, Rng& rng) {
    constexpr double k_most_remainders = 100000, k_most_images = 3000;
    Costs costs = costs_of(p.u, p.v);
    bool sequences = costs.remainders < k_most_remainders, images = costs.images < k_most_images;
    Chooser c = {rng, ""};
    boolean stash;
    c.choose("word_engines", word_engines, {!images, !images, !images, 1});
    c.choose("trial_cutoff", trial_cutoff, {0, 25, 1000000});
    if (sequences) {
        c.choose("tripval", tripval, {0, 20, 60, 16384});
        c.choose("mod_method_diff", mod_method_diff, {-1, 6, 1000});
        c.choose("chinhensel", chinhensel, {0, 1, 1, 1});
        c.choose("counted", c_cntcount, {0, 0, 0, 200001});
    } else {  // nothing that leads to them by force
        c.choose("tripval", tripval, {0, 20});
        c.choose("mod_method_diff", mod_method_diff, {-1, 6});
    }
    c.choose("try_rat", try_rat, {0, 1});
    c.choose("rat_yes", rat_yes, {0, 1, 1, 1});
    c.choose("sure", gcd_sure, {0, 0, 0, 1});
    c.choose("fast_gcd_size", fast_gcd_size, {0, 25000, 25000});
    c.choose("poly_cutoff", poly_cutoff, {4, 80});
    c.choose("abandoned", alg_c_count, {0, 0, 3});
    c.choose("faults", fault_rate, {0, 0, 0, 0, 1, 5, 30});
    if (fault_rate > 0) {
        fault_limit = 10;
        fault_rng.seed(rng());
        gcd_fault = spoil;
    }
    c.choose("stash", stash, {0, 0, 1});
    if (stash) {
        init_gcd_stash();
        c.choose("stash_cutoff", gcd_stash_cutoff, {0, 50, 200});
        c.choose("small_stash_cut", small_gcd_stash_cut, {0, 100});
    }
    return c.text;
}
}  // namespace tolvex::test
