#include "tests/stress/judge.h"

#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_gcd.h"
#include "numbers/number_modes.h"
#include "poly/div_general.h"
#include "poly/poly_basic.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/poly_vars.h"
#include "tests/stress/judge_field.h"

#include <algorithm>
#include <vector>
namespace tolvex::test {
namespace {
using Point = std::vector<uint64_t>;       // a value for each level
using Univariate = std::vector<uint64_t>;  // coefficients by exponent, no leading zeros
}  // namespace

static Point random_point(const JudgeField& f, Rng& rng) {
    Point at(k_levels);
    for (uint64_t& x : at) x = f.random_unit(rng);
    return at;
}

static uint64_t value_at(const JudgeField& f, const polynode* p, const Point& at, size_t level = 0) {
    uint64_t sum = 0;
    for (; p != nullptr; p = p->next) {
        uint64_t c = p->numb ? f.of_number(p->ncoef) : value_at(f, p->pcoef, at, level + 1);
        if (p->exp != 0) c = f.mul(c, f.power(at[level], static_cast<uint64_t>(p->exp)));
        sum = f.add(sum, c);
    }
    return sum;
}

// p at the point in all levels but one, added to image.
static void add_image(const JudgeField& f, const polynode* p, const Point& at, size_t kept, size_t level,
                      uint64_t factor, Univariate* image, size_t exponent) {
    for (; p != nullptr; p = p->next) {
        uint64_t here = factor;
        auto e = static_cast<size_t>(p->exp);
        if (level == kept)
            exponent = e;
        else if (e != 0)
            here = f.mul(factor, f.power(at[level], e));
        if (!p->numb) {
            add_image(f, p->pcoef, at, kept, level + 1, here, image, exponent);
            continue;
        }
        if (image->size() <= exponent) image->resize(exponent + 1);
        (*image)[exponent] = f.add((*image)[exponent], f.mul(here, f.of_number(p->ncoef)));
    }
}

static void trim(Univariate& a) {
    while (!a.empty() && a.back() == 0) a.pop_back();
}

static Univariate gcd_of_images(const JudgeField& f, Univariate a, Univariate b) {
    if (a.size() < b.size()) a.swap(b);
    while (!b.empty()) {
        uint64_t inverse = f.inverse(b.back());
        while (a.size() >= b.size()) {
            uint64_t q = f.neg(f.mul(a.back(), inverse));
            size_t shift = a.size() - b.size();
            for (size_t i = 0; i < b.size(); i++) a[i + shift] = f.add(a[i + shift], f.mul(q, b[i]));
            trim(a);
        }
        a.swap(b);
    }
    return a;
}

static size_t degree_in(const polynode* p, size_t level) {
    size_t most = 0;
    for (; p != nullptr; p = p->next) {
        if (level == 0)
            most = std::max(most, static_cast<size_t>(p->exp));
        else if (!p->numb)
            most = std::max(most, degree_in(p->pcoef, level - 1));
    }
    return most;
}

// Do a and b have no common factor that contains the level? Proved by one image that keeps a leading
// coefficient.
static bool coprime_in(const JudgeField& f, poly a, poly b, size_t level, Rng& rng) {
    constexpr int k_points = 60;
    size_t degree[2] = {degree_in(a, level), degree_in(b, level)};
    if (degree[0] == 0 || degree[1] == 0) return true;
    for (int i = 0; i < k_points; i++) {
        Point at = random_point(f, rng);
        Univariate image[2];
        add_image(f, a, at, level, 0, 1, &image[0], 0);
        add_image(f, b, at, level, 0, 1, &image[1], 0);
        trim(image[0]), trim(image[1]);
        bool kept = image[0].size() == degree[0] + 1 || image[1].size() == degree[1] + 1;
        if (kept && gcd_of_images(f, image[0], image[1]).size() == 1) return true;
    }
    return false;
}

// The gcd of all numbers of p and g.
static void take_in_numbers(const polynode* p, imptr g) {
    for (; p != nullptr; p = p->next) {
        if (p->numb)
            binary_gcd(g, p->ncoef, g);
        else
            take_in_numbers(p->pcoef, g);
    }
}

static bool integer_contents_agree(poly u, poly v, poly g) {
    number both = {}, own = {};
    setvalue(0, &both);
    setvalue(0, &own);
    take_in_numbers(u, &both);
    take_in_numbers(v, &both);
    take_in_numbers(g, &own);
    bool same = equal(&both, &own);
    special_free(&both);
    special_free(&own);
    return same;
}

static bool in_normal_form(poly g) {
    const number* lead = leading_coef(g)->ncoef;
    return modularmode ? lead->lint == 1 : lead->head->value > 0;
}

std::string judge_divisor(poly n, poly g, poly* q, Rng& rng) {
    constexpr int k_points = 2;
    boolean failed = 0;
    gen_poly_divide(n, g, q, polynames, &failed);
    if (failed) return "does not divide";
    const JudgeField& f = JudgeField::of_ring();
    for (int i = 0; i < k_points; i++) {
        Point at = random_point(f, rng);
        if (f.mul(value_at(f, g, at), value_at(f, *q, at)) != value_at(f, n, at)) return "quotient is wrong";
    }
    return "";
}

static std::string judge_cofactors(poly u, poly v, poly g, poly* a, poly* b, Rng& rng) {
    std::string wrong = judge_divisor(u, g, a, rng);
    if (wrong.empty()) wrong = judge_divisor(v, g, b, rng);
    if (!wrong.empty() || (modularmode && !mod_is_prime && !finf)) return wrong;
    const JudgeField& f = JudgeField::of_ring();
    for (size_t level = 0; level < static_cast<size_t>(number_polys); level++)
        if (!coprime_in(f, *a, *b, level, rng)) return "too small in level " + std::to_string(level + 1);
    return "";
}

std::string judge_gcd(poly u, poly v, poly g, Rng& rng) {
    if (!poly_check(g, number_polys)) return "malformed";
    if (poly_iszero(g)) return "zero";
    if (!(modularmode && !mod_is_prime && !finf) && !in_normal_form(g)) return "not in normal form";
    poly a = nullptr, b = nullptr;
    std::string wrong = judge_cofactors(u, v, g, &a, &b, rng);
    free_poly(&a);
    free_poly(&b);
    if (wrong.empty() && !modularmode && !integer_contents_agree(u, v, g)) wrong = "integer content";
    return wrong;
}
}  // namespace tolvex::test
