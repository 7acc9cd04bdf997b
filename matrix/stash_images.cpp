#include "matrix/stash_images.h"

#include "matrix/determinant.h"
#include "matrix/interpolated.h"
#include "matrix/matrix_modes.h"
#include "poly/packed.h"
#include "poly/poly_basic.h"
#include "poly/poly_shape.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "quoly/quoly_display.h"
#include "quoly/quoly_quot.h"
#include "storage/interrupt.h"
#include "storage/progress.h"
#include "storage/scratch.h"

#include <algorithm>
#include <cinttypes>
namespace tolvex {
namespace {
struct Stash {
    FILE* file;
    int32_t level, degree;  // of the first variable, from 1; of the images' polynomial
    uint32_t* point;        // degree + 1 of them
};
}  // namespace

/// "name[i] := value; ", after the statement that makes the array.
static void write_element(const Stash& s, const char* name, int32_t i, const quolynode* value) {
    if (i == 0) fprintf(s.file, "Array %s[%d]; \n", name, s.degree + 1);
    fprintf(s.file, "%s[%" PRId64 "] :=", name, user_number(i));
    quoly_display(s.file, 0, value);
    fprintf(s.file, "; \n");
}

/// *q := the polynomial of degree s.degree that is 1 at point i and 0 at the others.
static void basis_polynomial(const Stash& s, int32_t i, quolyptr q) {
    WordField f = word_field_ring();
    ScratchMark mark = scratch_mark();
    auto* c = scratch_array<uint32_t>(int64_t{s.degree} + 2);
    std::fill_n(c, s.degree + 2, 0);
    uint32_t scale = c[0] = 1;
    for (int32_t j = 0, have = 0; j <= s.degree; j++) {
        if (j == i) continue;
        uint32_t x = s.point[j];
        scale = wf_mul(f, scale, wf_sub(f, s.point[i], x));
        have++;
        for (int32_t k = have; k >= 0; k--) c[k] = wf_sub(f, k > 0 ? c[k - 1] : 0, wf_mul(f, c[k], x));
    }
    scale = wf_inverse(f, scale);
    PackTerms terms = {0, scratch_array<int64_t>(s.degree + 1), {scratch_array<uint32_t>(s.degree + 1)}};
    for (int32_t k = s.degree; k >= 0; k--) {
        if (c[k] == 0) continue;
        terms.index[terms.count] = k;
        terms.residue[terms.count++] = wf_mul(f, c[k], scale);
    }
    int32_t low[k_levels] = {}, high[k_levels] = {};
    high[s.level - 1] = s.degree;
    PackPlan plan;
    pack_plan(low, high, s.level, &plan);
    poly p = pack_tree(plan, nullptr, terms.index, terms.count, leaf_of_residue, &terms);
    poly_to_quoly(&p, q);
    scratch_release(mark);
}

/// q at the point.
static void put_point(quolyptr q, const Stash& s, uint32_t x) {
    quoly point = nullptr;
    quoly_set(0, &point);
    point->ncoef->lint = static_cast<int32_t>(x);
    quoly_put_number(q, s.level, point);
    free_quoly(&point);
}

/// *q := fct at the point.
static void divisor_at(const polynode* fct, const Stash& s, uint32_t x, quolyptr q) {
    poly copy = nullptr;
    poly_assign(fct, &copy);
    poly_to_quoly(&copy, q);
    put_point(q, s, x);
}

/// Points where fct, nil or a polynomial, is not 0. False: the field has not enough of them.
static bool choose_points(const polynode* fct, Stash& s) {
    int32_t count = 0;
    for (int32_t x = 0; x < modulus && count <= s.degree; x++) {
        quoly value = nullptr;
        if (fct != nullptr) divisor_at(fct, s, static_cast<uint32_t>(x), &value);
        if (fct == nullptr || !quoly_iszero(value)) s.point[count++] = static_cast<uint32_t>(x);
        free_quoly(&value);
        poll_interrupt();
    }
    return count > s.degree;
}

/// *q := the value of the determinant, divided by fct, where the first variable is x.
static void image_at(const quoly* a, int32_t m, const polynode* fct, const Stash& s, uint32_t x, quolyptr q) {
    ScratchMark mark = scratch_mark();
    int64_t count = int64_t{m} * m;
    auto* image = scratch_array<quoly>(count);
    for (int64_t k = 0; k < count; k++) {
        image[k] = nullptr;
        quoly_assign(a[k], &image[k]);
        put_point(&image[k], s, x);
        poll_every<256>(k);
    }
    boolean shown = verbose;
    verbose = 0;
    dense_determinant(image, m, q);
    verbose = shown;
    for (int64_t k = 0; k < count; k++) free_quoly(&image[k]);
    scratch_release(mark);
    if (fct == nullptr) return;
    quoly divisor = nullptr;
    divisor_at(fct, s, x, &divisor);
    fast_quoly_quot(q, divisor, false);
    free_quoly(&divisor);
}

bool stash_images(const quoly* a, int32_t m, const DeterminantRequest& request, quolyptr q) {
    Stash s = {request.stash, 0, 0, nullptr};
    if (finf || !mod_is_prime || !first_degree(a, m, &s.level, &s.degree)) return false;
    s.level++;
    if (request.fct != nullptr)
        s.degree -= std::min(s.degree, std::max(0, real_degree(request.fct, s.level)));
    s.degree = std::max(s.degree, 1);
    if (s.degree >= modulus) return false;
    quoly_set(0, q);
    if (s.file == nullptr) {
        *request.fault = Err::no_output_file;
        return true;
    }
    ScratchMark mark = scratch_mark();
    s.point = scratch_array<uint32_t>(int64_t{s.degree} + 1);
    bool good = choose_points(request.fct, s);
    if (!good) *request.fault = Err::no_free_point;
    for (int32_t i = 0; good && i <= s.degree; i++) {
        quoly image = nullptr, basis = nullptr;
        image_at(a, m, request.fct, s, s.point[i], &image);
        basis_polynomial(s, i, &basis);
        write_element(s, "co", i, image);
        write_element(s, "poly", i, basis);
        free_quoly(&image);
        free_quoly(&basis);
        poll_interrupt();
    }
    scratch_release(mark);
    return true;
}
}  // namespace tolvex
