#include "matrix/interpolation.h"

#include "matrix/interpolated.h"
#include "matrix/matrix_modes.h"
#include "matrix/stash_images.h"
#include "numbers/ring_switch.h"
#include "poly/field_shape.h"
#include "poly/poly_basic.h"
#include "poly/poly_shape.h"
#include "poly/word_field.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
#include "storage/progress.h"
#include "storage/scratch.h"

#include <cstdio>
#include <numeric>
namespace tolvex {
namespace {
constexpr int32_t k_most_sparse_rows = 65535;  // of the method as such
constexpr int32_t k_most_interpolated = 1500;  // rows whose images are kept as whole matrices
constexpr uint32_t k_large_field = 1u << 20;   // elements from which on a few points test a promise
int32_t neg_exponent_warning = 0;              // warnings given
}  // namespace

// ---- which matrices ------------------------------------------------------------------------------------

/// True if an entry holds a variable of a field tower: that variable has no values in the ground ring.
static bool meets_tower(const quoly* a, int64_t count) {
    if (field_depth == 0) return false;
    for (int64_t k = 0; k < count; k++) {
        if (!a[k]->numb && exists_field_element(a[k]->numer, 1)) return true;
        poll_every<1024>(k);
    }
    return false;
}

static bool has_negative_entry(const quoly* a, int64_t count) {
    for (int64_t k = 0; k < count; k++) {
        if (!a[k]->numb && has_negative_exponent(a[k]->numer)) return true;
        poll_every<1024>(k);
    }
    return false;
}

static void warn_negative_exponents() {
    constexpr int32_t k_most = 3;
    if (neg_exponent_warning >= k_most) return;
    printf(" Warning.  matrix contains negative exponents.  Fast\n");
    printf(" determinant method cannot be used.  It would be better\n");
    printf(" to remove the negative exponents and try again.\n");
    if (++neg_exponent_warning == k_most) printf(" *** This is the last warning message.\n");
}

// ---- divisors ------------------------------------------------------------------------------------------

void divide_fct(quolyptr n, const DeterminantRequest& request) {
    if (request.fct == nullptr || quoly_iszero(*n)) return;
    poly copy = nullptr;
    quoly divisor = nullptr;
    poly_assign(request.fct, &copy);
    poly_to_quoly(&copy, &divisor);
    fast_quoly_quot(n, divisor, false);
    free_quoly(&divisor);
    if ((*n)->denom == nullptr) return;
    quoly_set(0, n);
    *request.fault = Err::given_factor;
}

/// True if fct is a polynomial in one variable that vanishes on the whole ground field, which is small.
static bool vanishes_everywhere(const polynode* fct) {
    constexpr int32_t k_smallest = 65536;
    if (fct == nullptr || is_number(fct) || !modularmode || modulus > k_smallest) return false;
    while (fct->exp == 0 && fct->next == nullptr && !fct->numb) fct = fct->pcoef;
    if (fct->exp < modulus) return false;
    for (const polynode* t = fct; t != nullptr; t = t->next)
        if (!t->numb && !is_number(t->pcoef)) return false;
    WordField f = word_field_ring();
    for (uint32_t x = 0; x < f.p; x++) {
        uint32_t sum = 0;
        for (const polynode* t = fct; t != nullptr; t = t->next) {
            const number* c = t->numb ? t->ncoef : t->pcoef->ncoef;
            sum =
                wf_add(f, sum, wf_mul(f, wf_of_number(f, c), wf_power(f, x, static_cast<uint64_t>(t->exp))));
        }
        if (sum != 0) return false;
        poll_interrupt();
    }
    return true;
}

// ---- powers --------------------------------------------------------------------------------------------

/// True if the ground ring takes roots of that order in one way: the condition on the modulus; over Z primes
/// are chosen by it.
static bool power_is_good(int32_t power) {
    int32_t k = power < 0 ? -power : power;
    bool binary = (k & (k - 1)) == 0;
    if (k % 2 == 0 && !binary) return false;
    if (!modularmode) return true;
    if (finf || !mod_is_prime || modulus % 2 == 0) return false;
    return k % 2 == 0 ? modulus % 4 == 3 : std::gcd(k, modulus - 1) == 1;
}

static bool exponents_divisible(const polynode* p, int32_t k) {
    for (; p != nullptr; p = p->next) {
        if (p->exp % k != 0) return false;
        if (!p->numb && !exponents_divisible(p->pcoef, k)) return false;
    }
    return true;
}

static void divide_exponents(poly p, int32_t k) {
    for (; p != nullptr; p = p->next) {
        p->exp /= k;
        if (!p->numb) divide_exponents(p->pcoef, k);
    }
}

/// q, a polynomial in k-th powers, becomes the polynomial in the variables themselves; another one stays.
static void take_reduced_variables(quoly q, int32_t k) {
    if (!q->numb && q->denom == nullptr && exponents_divisible(q->numer, k)) divide_exponents(q->numer, k);
}

// ---- the route -----------------------------------------------------------------------------------------

/// The determinant of entries without divisor, tower and negative exponents.
static bool interpolate(const quoly* a, int32_t m, const DeterminantRequest& request, int32_t root,
                        const char* head, quolyptr q) {
    bool large = !modularmode || (!finf && static_cast<uint32_t>(modulus) >= k_large_field);
    bool used = large && request.fct != nullptr && !is_number(request.fct);
    InterpolationPlan plan = {
        used ? request.fct : nullptr, request.degree, request.degree2, root, request.numprimes, true, true,
        verbose ? head : nullptr};
    if (request.fct != nullptr && !large) plan.degree = plan.degree2 = -1;
    Interpolated outcome = plan.divisor != nullptr || root == 1 || large
                               ? interpolate_determinant(a, m, plan, q)
                               : Interpolated::broken_promise;
    if (outcome == Interpolated::done) {
        if (plan.divisor == nullptr) divide_fct(q, request);
        return true;
    }
    InterpolationPlan plain = {nullptr, -1, -1, 1, request.numprimes, true, false, nullptr};
    if (interpolate_determinant(a, m, plain, q) != Interpolated::done) return false;
    divide_fct(q, request);
    return true;
}

/// What all matrices have to pass.
static bool route(const quoly* a, int32_t m, const DeterminantRequest& request, bool check_laurent,
                  int32_t root, const char* head, quolyptr q) {
    int64_t count = int64_t{m} * m;
    if (meets_tower(a, count)) return false;
    if (check_laurent && has_negative_entry(a, count)) {
        warn_negative_exponents();
        return false;
    }
    if (modularmode && !finf && !mod_is_prime) return false;
    if (vanishes_everywhere(request.fct)) {
        *request.fault = Err::no_free_point;
        quoly_set(0, q);
        return true;
    }
    return interpolate(a, m, request, root, head, q);
}

bool mod_poly_determ(const quoly* a, int32_t m, const DeterminantRequest& request, bool check_laurent,
                     quolyptr q) {
    return route(a, m, request, check_laurent, 1, "LaGrange interpolation, degree ", q);
}

bool rat_poly_determ(const quoly* a, int32_t m, const DeterminantRequest& request, bool check_laurent,
                     quolyptr q) {
    if (verbose) dumpitt("LaGrange interpolation over Z, rows ", m, true, false, false);
    return route(a, m, request, check_laurent, 1, "LaGrange interpolation, degree ", q);
}

// ---- sparse matrices -----------------------------------------------------------------------------------

/// The elements of the matrix as a table by columns, in scratch memory; entries that are missing are the
/// shared zero.
static quoly* table_of(sparseptr spar, int32_t m) {
    int64_t count = int64_t{m} * m;
    auto* a = scratch_array<quoly>(count);
    for_polled<(int64_t{1} << 16)>(count, [a](int64_t k) { a[k] = quol_num_0; });
    SparseWalk w = walk_sparse(spar, m);
    while (colm_ptrptr t = next_row(w)) {
        poll_interrupt();
        for (const colnode* p = *t; p != nullptr; p = p->next) a[w.row + int64_t{p->coord - 1} * m] = p->val;
    }
    return a;
}

static const char* sparse_head(const DeterminantRequest& request) {
    if (modularmode) return "sparse LaGrange interpolation, side ";
    return request.numprimes > 0 ? "sparse S LaGrange interpolation over Z, rows "
                                 : "sparse LaGrange interpolation over Z, rows ";
}

bool sparse_lagrange(sparseptr spar, int32_t m, const DeterminantRequest& request, quolyptr q) {
    if (m > k_most_sparse_rows) {
        printf("Warning. Too many columns (> 65535) for sparse LaGrange method.\n");
        return false;
    }
    if (m > k_most_interpolated) return false;
    if (verbose) dumpitt(sparse_head(request), m, true, false, false);
    int32_t power = request.power > 1 || request.power < -1 ? request.power : 1;
    if (power != 1 && !modularmode && !power_is_good(power)) {
        if (verbose) printf("Specified power must be odd or power of 2. LaGrange method abandoned.\n");
        return false;
    }
    bool good = power != 1 && power_is_good(power);
    ScratchMark mark = scratch_mark();
    quoly* a = table_of(spar, m);
    if (modularmode && lagrange_stash && verbose && windy && stash_images(a, m, request, q)) {
        scratch_release(mark);
        return true;
    }
    bool done = route(a, m, request, laurent, good && power > 1 ? power : 1, " estimated degree is ", q);
    scratch_release(mark);
    if (done && good && power < 0) take_reduced_variables(*q, -power);
    return done;
}
}  // namespace tolvex
