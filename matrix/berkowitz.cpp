// The leading block of side k + 1 is [M C; R a], M that of side k. The coefficients of its characteristic
// polynomial are those of M times the lower triangular Toeplitz matrix with the column 1, -a, -R C, -R M C,
// -R M^2 C, ...
#include "matrix/berkowitz.h"

#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
namespace tolvex {
namespace {
struct Berkowitz {
    const poly* a;
    int32_t n;
    poly *vector, *image;  // M^i C and the next one
    poly* toeplitz;
    poly *c, *next;  // coefficients, that of the highest power first; never nil
};
}  // namespace

/// *sum := *sum + u v; nil is 0.
static void add_product(polyptrr sum, poly u, poly v) {
    if (u == nullptr || v == nullptr) return;
    poly product = nullptr;
    poly_mult(u, v, &product, polynames);
    if (*sum == nullptr)
        *sum = product;
    else
        best_poly_add(*sum, product, sum);
    poll_interrupt();
}

static void drop_zero(polyptrr p) {
    if (*p != nullptr && poly_iszero(*p)) free_poly(p);
}

static void free_all(poly* p, int32_t count) {
    for (int32_t k = 0; k < count; k++) free_poly(&p[k]);
}

/// vector := M vector, M of side k.
static void multiply_vector(Berkowitz& b, int32_t k) {
    for (int32_t r = 0; r < k; r++) {
        b.image[r] = nullptr;
        for (int32_t c = 0; c < k; c++) add_product(&b.image[r], b.a[int64_t{r} * b.n + c], b.vector[c]);
        drop_zero(&b.image[r]);
    }
    free_all(b.vector, k);
    std::swap(b.vector, b.image);
}

/// The column of the step from side k to side k + 1 behind its leading 1, negative.
static void fill_toeplitz(Berkowitz& b, int32_t k) {
    const poly* row = b.a + int64_t{k} * b.n;
    b.toeplitz[0] = nullptr;
    if (row[k] != nullptr) poly_assign(row[k], &b.toeplitz[0]);
    for (int32_t r = 0; r < k; r++) {
        b.vector[r] = nullptr;
        if (b.a[int64_t{r} * b.n + k] != nullptr) poly_assign(b.a[int64_t{r} * b.n + k], &b.vector[r]);
    }
    for (int32_t i = 1; i <= k; i++) {
        b.toeplitz[i] = nullptr;
        for (int32_t c = 0; c < k; c++) add_product(&b.toeplitz[i], row[c], b.vector[c]);
        drop_zero(&b.toeplitz[i]);
        if (i < k) multiply_vector(b, k);
    }
    free_all(b.vector, k);
}

static void take_step(Berkowitz& b, int32_t k) {
    fill_toeplitz(b, k);
    for (int32_t i = 0; i <= k + 1; i++) {
        poly sum = nullptr;
        for (int32_t j = 0; j < i; j++) add_product(&sum, b.toeplitz[i - 1 - j], b.c[j]);
        drop_zero(&sum);
        if (sum != nullptr) poly_inplace(sum);
        b.next[i] = sum;
        if (i > k || b.c[i] == nullptr) continue;
        if (sum == nullptr)
            poly_assign(b.c[i], &b.next[i]);
        else
            better_poly_add(sum, b.c[i], &b.next[i]);
        drop_zero(&b.next[i]);
    }
    free_all(b.toeplitz, k + 1);
    free_all(b.c, k + 1);
    std::swap(b.c, b.next);
}

void berkowitz_charpoly(const poly* a, int32_t n, poly* c) {
    ScratchMark mark = scratch_mark();
    int64_t room = int64_t{n} + 1;
    Berkowitz b = {a,
                   n,
                   scratch_array<poly>(room),
                   scratch_array<poly>(room),
                   scratch_array<poly>(room),
                   scratch_array<poly>(room),
                   scratch_array<poly>(room)};
    std::fill_n(b.vector, room, nullptr);
    std::fill_n(b.c, room, nullptr);
    poly_set(1, &b.c[0]);
    for (int32_t k = 0; k < n; k++) take_step(b, k);
    for (int32_t k = 0; k <= n; k++) {
        c[n - k] = b.c[k];
        if (c[n - k] == nullptr) poly_set(0, &c[n - k]);
    }
    scratch_release(mark);
}

double berkowitz_work(const EntryMeasure& e, int32_t n) {
    constexpr double k_term = 25, k_product = 250;
    double work = 0;
    for (int32_t k = 1; k < n; k++) {
        double products = static_cast<double>(k) * k * e.filled, paths = e.entry_terms;
        for (int32_t i = 1; i <= k; i++) {  // entries of M^(i-1) C
            double terms = std::min(paths, product_monomials(e, i));
            work += products * (k_product + k_term * e.entry_terms * terms);
            work += k * (k_product + k_term * terms);  // their share of the products of two coefficients
            paths *= std::max(1.0, k * e.filled * e.entry_terms);
        }
    }
    return work;
}
}  // namespace tolvex
