#include "field/tower_interpolate.h"

#include "field/tower_divide.h"
#include "field/tower_words.h"
#include "poly/div_internal.h"
#include "poly/field_shape.h"
#include "poly/poly_add.h"
#include "poly/poly_basic.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_test.h"
#include "poly/ports.h"
#include "poly/size_estimates.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <initializer_list>
namespace tolvex {
namespace {
/// A value for y: a word of the ground ring, or, where that has too few, an element of the tower.
struct Value {
    uint32_t word;
    poly element;  // one level below y; nil: the word
};

/// One interpolation. Polynomials stand at the level of pt, `lead` at that of y.
struct Interpolation {
    poly u, v;
    polypt pt, y;       // y: the variable that takes values
    poly lead;          // the gcd of the leading coefficients, polynomials in y
    int32_t degree;     // a multiple of the gcd by a divisor of lead has at most this degree in y
    poly sum, modulus;  // what has been put together, and the product of y less the values
    int32_t images;
};
}  // namespace

static bool is_element(const polynode* p, const polydata* pt) {
    return is_number(p) || is_field_element(p, pt->depth);
}

/// The deepest variable above the field that occurs in p.
static polypt deepest_variable(const polynode* p, polypt pt) {
    polypt deepest = nullptr;
    for (; p != nullptr; p = p->next) {
        if (pt->depth >= field_depth) return nullptr;
        polypt below = p->numb ? nullptr : deepest_variable(p->pcoef, pt->next);
        if (below == nullptr && p->exp != 0) below = pt;
        if (below != nullptr && (deepest == nullptr || below->depth > deepest->depth)) deepest = below;
    }
    return deepest;
}

/// The leading coefficient of p in the variables from pt on above y, a polynomial in y at its level; part of
/// p.
static poly leading_in(poly p, polypt pt, polypt y) {
    for (; pt != y && !p->numb; p = p->pcoef) pt = pt->next;
    return p;
}

/// *p, at the level of pt, := *p times a power of the value.
static void times_power(polyptrr p, const Value& at, int32_t exponent, polypt pt) {
    if (at.element == nullptr) {
        const uint32_t power = wf_power(word_field_ring(), at.word, static_cast<uint64_t>(exponent));
        mod_num_poly_mult(p, static_cast<int32_t>(power));
        return;
    }
    for (; exponent > 0 && !poly_iszero(*p); exponent--) poly_mult(*p, at.element, p, pt);
}

/// The value of p, a polynomial in y at its level, one level down.
static poly value_of_chain(const polynode* p, const Value& at, polypt y) {
    poly sum = nullptr;
    poly_set(0, &sum);
    for (; p != nullptr; p = p->next) {
        poly c = coefficient_copy(p);
        best_poly_add(sum, c, &sum);
        times_power(&sum, at, p->exp - (p->next != nullptr ? p->next->exp : 0), y->next);
    }
    return sum;
}

/// The value of p where y takes the given one; fresh, levels stay.
static poly value_at(const polynode* p, polypt pt, polypt y, const Value& at) {
    poll_interrupt();
    poly result = nullptr;
    if (is_element(p, pt)) {
        poly_assign(p, &result);
        return result;
    }
    if (pt == y) {
        result = value_of_chain(p, at, y);
        add_pad(&result, 1);
        return result;
    }
    polyptrr tail = &result;
    for (; p != nullptr; p = p->next) {
        poly c = p->numb ? coefficient_copy(p) : value_at(p->pcoef, pt->next, y, at);
        if (poly_iszero(c))
            free_poly(&c);
        else
            tail = append_term(tail, p->exp, c);
    }
    fix_top(&result);
    return result;
}

/// The exponents of the leading monomials in the variables from pt on down to the field compared: positive if
/// that of u is greater.
static int32_t compare_leading_monomials(const polynode* u, const polynode* v, polypt pt) {
    for (; pt != nullptr && pt->depth < field_depth; pt = pt->next) {
        const int32_t eu = u->numb ? 0 : u->exp, ev = v->numb ? 0 : v->exp;
        if (eu != ev) return eu > ev ? 1 : -1;
        if (!u->numb) u = u->pcoef;
        if (!v->numb) v = v->pcoef;
    }
    return 0;
}

/// *g := the gcd of the values of u and v, times that of the lead. declined: the leading coefficient of one
/// vanishes.
static Interpolated image_at(const Interpolation& n, const Value& at, polyptrr g) {
    poly a = value_at(leading_in(n.u, n.pt, n.y), n.y, n.y, at),
         b = value_at(leading_in(n.v, n.pt, n.y), n.y, n.y, at);
    const bool good = !poly_iszero(a) && !poly_iszero(b);
    free_poly(&a);
    free_poly(&b);
    if (!good) return Interpolated::declined;
    a = value_at(n.u, n.pt, n.y, at);
    b = value_at(n.v, n.pt, n.y, at);
    const bool inverses = tower_monic(&a, n.pt) && tower_monic(&b, n.pt) && gcd_in_words(a, b, g, n.pt);
    free_poly(&a);
    free_poly(&b);
    if (!inverses) return Interpolated::no_inverse;
    if (is_element(*g, n.pt)) return Interpolated::found;
    poly scale = value_at(n.lead, n.y, n.y, at);
    add_pad(&scale, n.y->depth - n.pt->depth);
    poly_mult(*g, scale, g, n.pt);
    free_poly(&scale);
    return Interpolated::found;
}

/// *difference, at the level of pt, := *difference / m, an element one level below y. False, nothing done: m
/// has no inverse.
static bool divide_by_element(polyptrr difference, polyptrr m, const Interpolation& n) {
    if (is_number(*m)) {
        const uint32_t inverse = wf_inverse(word_field_ring(), static_cast<uint32_t>((*m)->ncoef->lint));
        mod_num_poly_mult(difference, static_cast<int32_t>(inverse));
        return true;
    }
    poly inverse = nullptr;
    if (!tower_normalise(m, n.y->next, &inverse)) return false;
    add_pad(&inverse, n.y->next->depth - n.pt->depth);
    poly_mult(*difference, inverse, difference, n.pt);
    free_poly(&inverse);
    return true;
}

/// *p := y less the value, at the level of y.
static void linear_factor(polyptrr p, const Value& at) {
    poly minus = nullptr;
    base_poly(p, 1);
    if (at.element == nullptr) {
        poly_set(static_cast<int32_t>(wf_neg(word_field_ring(), at.word)), &minus);
    } else {
        poly_assign(at.element, &minus);
        poly_inplace(minus);
        add_pad(&minus, 1);
    }
    best_poly_add(*p, minus, p);
}

/// What has been put together becomes the image g as well. True if it was before. Nothing is done where the
/// value less one of those before has no inverse.
static bool take_image(Interpolation& n, poly g, const Value& at) {
    poly before = value_at(n.sum, n.pt, n.y, at), difference = nullptr;
    poly_sub(g, before, &difference);
    free_poly(&before);
    const bool same = poly_iszero(difference);
    if (!same) {
        poly m = value_of_chain(n.modulus, at, n.y);
        const bool divided = divide_by_element(&difference, &m, n);
        free_poly(&m);
        if (!divided) {
            free_poly(&difference);
            return false;
        }
        poly padded = nullptr;
        poly_assign(n.modulus, &padded);
        add_pad(&padded, n.y->depth - n.pt->depth);
        poly_mult(difference, padded, &difference, n.pt);
        free_poly(&padded);
        best_poly_add(n.sum, difference, &n.sum);
    } else {
        free_poly(&difference);
    }
    poly linear = nullptr;
    linear_factor(&linear, at);
    poly_mult(n.modulus, linear, &n.modulus, n.y);
    free_poly(&linear);
    n.images++;
    return same;
}

/// Starts anew with nothing put together.
static void forget_images(Interpolation& n) {
    poly_set(0, &n.sum);
    poly_set(1, &n.modulus);
    n.images = 0;
}

/// *c := the gcd of *c, unless nil, and the coefficients of p in the variables above y. False: no inverse.
static bool take_in_content(poly p, polypt pt, polypt y, polyptrr c) {
    if (*c != nullptr && is_element(*c, y)) return true;
    if (is_element(p, pt)) {
        poly_set(1, c);
        return true;
    }
    if (pt != y) {
        for (; p != nullptr; p = p->next) {
            if (p->numb) {
                poly_set(1, c);
            } else if (!take_in_content(p->pcoef, pt->next, y, c)) {
                return false;
            }
        }
        return true;
    }
    poly g = nullptr;
    const bool good = gcd_in_words(*c != nullptr ? *c : p, p, &g, y);
    free_poly(c);
    *c = g;
    return good;
}

/// *g := what has been put together without its content in y, if it divides both.
static bool proved(const Interpolation& n, polyptrr g) {
    poly c = nullptr, q = nullptr, rest = nullptr;
    bool good = take_in_content(n.sum, n.pt, n.y, &c);
    if (good) {
        add_pad(&c, n.y->depth - n.pt->depth);
        if (is_number(c))
            poly_assign(n.sum, &q);
        else
            good = tower_divide(n.sum, c, &q, n.pt);
    }
    good = good && tower_monic(&q, n.pt) && tower_divide(n.u, q, &rest, n.pt);
    free_poly(&rest);
    good = good && tower_divide(n.v, q, &rest, n.pt);
    free_poly(&rest);
    free_poly(&c);
    if (good) {
        free_poly(g);
        *g = q;
    } else {
        free_poly(&q);
    }
    return good;
}

/// The values that y takes, one after the other.
struct Values {
    bool elements;      // of the tower rather than words
    int64_t count, at;  // how many there are, zero apart, and the number 1..count of the last one
    int32_t most;       // how many are tried
};

/// False: there are too few.
static bool choose_values(const Interpolation& n, Values* v) {
    constexpr int64_t k_many = int64_t{1} << 40;
    const TowerWords& t = tower_words();
    const int32_t wanted = 2 * n.degree + 8, least = n.degree + 2;
    v->most = wanted;
    v->count = static_cast<int64_t>(t.f.p) - 1;
    v->elements = wanted >= v->count;
    if (v->elements) {
        int64_t elements = 1;
        for (int64_t i = 0; i < t.at[t.height].size && elements < k_many; i++) elements *= t.f.p;
        v->count = elements - 1;
        if (wanted > v->count) v->most = static_cast<int32_t>(v->count);
    }
    v->at = wf_random_unit(t.f);
    return v->most > least;
}

/// *value := the next one: its number in base p are the coefficients of the element.
static void next_value(Values* v, Value* value, polypt y) {
    const TowerWords& t = tower_words();
    v->at = v->at < v->count ? v->at + 1 : 1;
    value->word = static_cast<uint32_t>(v->at);
    free_poly(&value->element);
    if (!v->elements) return;
    const int64_t size = t.at[t.height].size;
    ScratchMark mark = scratch_mark();
    auto* digits = scratch_array<uint32_t>(size);
    int64_t rest = v->at;
    for (int64_t i = 0; i < size; i++, rest /= t.f.p) digits[i] = static_cast<uint32_t>(rest % t.f.p);
    value->element = tw_to_poly(t, t.height, digits);
    add_pad(&value->element, field_depth - y->depth - 1);
    scratch_release(mark);
}

/// Images at one value after the other.
static Interpolated interpolate(Interpolation& n, polyptrr g) {
    Values values = {};
    if (!choose_values(n, &values)) return Interpolated::declined;
    Value at = {0, nullptr};
    poly image = nullptr, accepted = nullptr;
    Interpolated outcome = Interpolated::declined;
    for (int32_t i = 0; i < values.most && outcome == Interpolated::declined; i++) {
        next_value(&values, &at, n.y);
        const Interpolated drawn = image_at(n, at, &image);
        if (drawn == Interpolated::no_inverse) outcome = drawn;
        if (drawn != Interpolated::found) continue;
        if (is_element(image, n.pt)) {
            poly_set(1, g);
            outcome = Interpolated::found;
            break;
        }
        const int32_t order = accepted == nullptr ? -1 : compare_leading_monomials(image, accepted, n.pt);
        if (order > 0) continue;  // its gcd is too large
        if (order < 0) {          // those of all before were
            forget_images(n);
            poly_assign(image, &accepted);
        }
        const bool same = take_image(n, image, at);
        if ((same || n.images > n.degree) && proved(n, g)) outcome = Interpolated::found;
    }
    free_poly(&image);
    free_poly(&accepted);
    free_poly(&at.element);
    return outcome;
}

Interpolated gcd_by_interpolation(poly u, poly v, polyptrr g, polypt pt) {
    polypt y = deepest_variable(u, pt), other = deepest_variable(v, pt);
    if (y == nullptr || (other != nullptr && other->depth > y->depth)) y = other;
    if (y == nullptr || y == pt) return Interpolated::declined;
    Interpolation n = {u, v, pt, y, nullptr, 0, nullptr, nullptr, 0};
    poly a = leading_in(u, pt, y), b = leading_in(v, pt, y);
    Interpolated outcome = Interpolated::no_inverse;
    if (gcd_in_words(a, b, &n.lead, y)) {
        int32_t du = 0, dv = 0;
        const int32_t level = y->depth - pt->depth + 1;
        max_degree(u, level, &du);
        max_degree(v, level, &dv);
        n.degree = minn(du, dv) + (is_element(n.lead, y) ? 0 : n.lead->exp);
        forget_images(n);
        outcome = interpolate(n, g);
    }
    for (poly* p : {&n.lead, &n.sum, &n.modulus}) free_poly(p);
    return outcome;
}
}  // namespace tolvex
