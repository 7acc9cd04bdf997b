#include "poly/dense_gcd.h"

#include "poly/dense_divide.h"
#include "poly/dense_internal.h"
#include "poly/dense_kernels.h"
#include "storage/interrupt.h"

#include <utility>
namespace tolvex {
namespace {
// Sums of degrees from which the half-gcd pays; measured. The products of table fields have no transforms.
#ifdef TOLVEX_SMALL_LIMITS
constexpr int32_t k_hgcd_degrees = 12;
constexpr int32_t k_table_hgcd_degrees = 12;
#else
constexpr int32_t k_hgcd_degrees = 3000;
constexpr int32_t k_table_hgcd_degrees = 10000;
#endif
}  // namespace

bool divide_y_into_x(const WordField& f, DensePoly* x, DensePoly* y) {
    uint32_t inverse = unit_inverse(f, y->c[y->degree]);
    if (inverse == 0) return false;
    x->degree = wf_div_mod(f, x->c, x->degree, y->c, y->degree, inverse, nullptr);
    std::swap(*x, *y);
    return true;
}

bool simple_onevar_gcd(const WordField& f, DensePoly x, DensePoly y, DensePoly* g) {
    if (x.degree < y.degree) std::swap(x, y);
    while (y.degree >= 0) {
        poll_interrupt();
        if (!divide_y_into_x(f, &x, &y)) return false;
    }
    *g = x;
    return true;
}

bool wf_dense_gcd(const WordField& f, uint32_t* x, int32_t xdeg, uint32_t* y, int32_t ydeg, uint32_t** g,
                  int32_t* gdeg) {
    DensePoly u = {x, wf_degree(x, xdeg)}, v = {y, wf_degree(y, ydeg)}, r;
    if (!hgcd(f, u, v, f.table ? k_table_hgcd_degrees : k_hgcd_degrees, &r)) return false;
    *g = r.c;
    *gdeg = r.degree;
    if (r.degree < 0) return true;
    uint32_t inverse = unit_inverse(f, r.c[r.degree]);
    if (inverse == 0) return false;
    row_scale(f, r.c, r.degree + 1, inverse);
    return true;
}

bool dense_gcd(int32_t* x, int32_t xdeg, int32_t* y, int32_t ydeg, int32_t** g, int32_t* gdeg) {
    uint32_t* result = nullptr;
    bool done = wf_dense_gcd(word_field_ring(), reinterpret_cast<uint32_t*>(x), xdeg,
                             reinterpret_cast<uint32_t*>(y), ydeg, &result, gdeg);
    *g = reinterpret_cast<int32_t*>(result);
    return done;
}
}  // namespace tolvex
