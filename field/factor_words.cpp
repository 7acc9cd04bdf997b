#include "field/factor_words.h"

#include "storage/polled_sort.h"

#include <algorithm>
namespace tolvex {
// ---- lists ---------------------------------------------------------------------------------------------

void open_list(FactorList* list, const CoefficientField& k, int32_t degree) {
    *list = {new_elements(k, int64_t{2} * degree + 2), scratch_array<FactorPart>(int64_t{degree} + 1), 0};
}

void append_1(FactorList* list, const CoefficientField& k, const uint32_t* c, int32_t degree, int32_t d,
              int32_t multiplicity) {
    copy_elements(k, c, degree + 1, list->room);
    list->part[list->count++] = {list->room, degree, d, multiplicity};
    list->room += (degree + 1) * k.size;
}

// xorshift64* (Vigna, "An experimental exploration of Marsaglia's xorshift generators", 2016).
uint64_t random_bits(FactorRandom* random) {
    uint64_t& s = random->state;
    s ^= s >> 12;
    s ^= s << 25;
    s ^= s >> 27;
    return s * 0x2545F4914F6CDD1Du;
}

uint32_t random_below(FactorRandom* random, uint32_t n) {
    return static_cast<uint32_t>((random_bits(random) >> 32) * n >> 32);
}

void random_elements(const CoefficientField& k, FactorRandom* random, int32_t n, uint32_t* out) {
    do {
        for (int64_t i = 0; i < n * k.size; i++) out[i] = random_below(random, k.t.f.p);
    } while (tw_iszero(k.t, k.h, out));
}

// ---- square-free parts ---------------------------------------------------------------------------------

namespace {
/// A polynomial with room for the degree it starts with.
struct Operand {
    uint32_t* c;
    int32_t degree;
};
}  // namespace

static Operand operand_of(const CoefficientField& k, const uint32_t* c, int32_t degree) {
    Operand a = {new_elements(k, degree + 1), degree};
    copy_elements(k, c, degree + 1, a.c);
    return a;
}

/// a := a / b, exactly.
static void divide_out(const CoefficientField& k, Operand* a, const Operand& b) {
    if (b.degree == 0) return;
    ScratchMark mark = scratch_mark();
    const int32_t degree = a->degree - b.degree;
    auto* q = new_elements(k, degree + 1);
    poly_divide(k, a->c, a->degree, b.c, b.degree, q);
    copy_elements(k, q, degree + 1, a->c);
    a->degree = degree;
    scratch_release(mark);
}

/// g := the gcd of a and b, which are kept; g has room for the smaller. False: an element has no inverse.
static bool common_divisor(const CoefficientField& k, const Operand& a, const Operand& b, Operand* g) {
    ScratchMark mark = scratch_mark();
    Operand x = operand_of(k, a.c, a.degree), y = operand_of(k, b.c, b.degree);
    uint32_t* c = nullptr;
    const int32_t degree = poly_gcd(k, x.c, x.degree, y.c, y.degree, &c);
    if (degree >= 0) copy_elements(k, c, degree + 1, g->c);
    g->degree = degree;
    scratch_release(mark);
    return degree >= 0;
}

/// d := the derivative of f, which has room; d.degree is true.
static void derivative(const CoefficientField& k, const Operand& f, Operand* d) {
    const bool table = k.t.f.table;
    for (int32_t e = 1; e <= f.degree; e++) {
        const auto times = static_cast<uint32_t>(table ? e & 1 : e % static_cast<int64_t>(k.p));
        for (int64_t i = 0; i < k.size; i++)
            d->c[(e - 1) * k.size + i] = wf_mul(k.t.f, times, f.c[e * k.size + i]);
    }
    d->degree = poly_degree(k, d->c, f.degree - 1);
}

/// Appends the factors of rest whose multiplicity is no multiple of the characteristic; rest becomes what is
/// left, a power of it. d is its derivative, not 0. Musser's loop, as gcd/square_free.h.
static bool separate(const CoefficientField& k, Operand* rest, const Operand& d, int32_t times,
                     FactorList* list) {
    Operand c = operand_of(k, rest->c, rest->degree), w = operand_of(k, rest->c, rest->degree),
            y = operand_of(k, rest->c, rest->degree);
    if (!common_divisor(k, *rest, d, &c)) return false;
    divide_out(k, &w, c);
    for (int32_t i = 1; w.degree > 0; i++) {
        poll_interrupt();
        if (static_cast<uint32_t>(i) % k.p == 0) {  // every factor of w occurs more often than that
            divide_out(k, &c, w);
            i++;
        }
        if (!common_divisor(k, w, c, &y)) return false;
        divide_out(k, &w, y);
        if (w.degree > 0) append_1(list, k, w.c, w.degree, 0, i * times);
        divide_out(k, &c, y);
        std::swap(w, y);
    }
    copy_elements(k, c.c, c.degree + 1, rest->c);
    rest->degree = c.degree;
    return true;
}

bool square_free_parts(const CoefficientField& k, const uint32_t* f, int32_t n, FactorList* list) {
    const FactorList before = *list;
    ScratchMark mark = scratch_mark();
    Operand rest = operand_of(k, f, n), d = operand_of(k, f, n);
    bool good = true;
    for (int32_t times = 1;; times *= static_cast<int32_t>(k.p)) {
        derivative(k, rest, &d);
        if (d.degree >= 0) good = separate(k, &rest, d, times, list);
        if (!good || rest.degree == 0) break;
        const auto p = static_cast<int32_t>(k.p);
        rest.degree /= p;
        for (int32_t e = 0; e <= rest.degree; e++) {
            copy_elements(k, rest.c + int64_t{e} * p * k.size, 1, rest.c + e * k.size);
            element_root(k, rest.c + e * k.size);
        }
    }
    scratch_release(mark);
    if (!good) {  // as it came
        *list = before;
        append_1(list, k, f, n, 0, 1);
    }
    return good;
}

int32_t has_repeated_factor(const CoefficientField& k, const uint32_t* f, int32_t n) {
    ScratchMark mark = scratch_mark();
    Operand whole = operand_of(k, f, n), d = operand_of(k, f, n), g = operand_of(k, f, n);
    derivative(k, whole, &d);
    int32_t repeated = 1;
    if (d.degree >= 0) repeated = !common_divisor(k, whole, d, &g) ? -1 : g.degree > 0;
    scratch_release(mark);
    return repeated;
}

// ---- all steps -----------------------------------------------------------------------------------------

namespace {
/// The order of the factors.
struct FactorOrder {
    int64_t size;
    bool operator()(const FactorPart& a, const FactorPart& b) const {
        if (a.multiplicity != b.multiplicity) return a.multiplicity < b.multiplicity;
        if (a.degree != b.degree) return a.degree < b.degree;
        for (int64_t i = (a.degree + 1) * size - 1; i >= 0; i--)
            if (a.c[i] != b.c[i]) return a.c[i] < b.c[i];
        return false;
    }
};
}  // namespace

bool factor_words(const CoefficientField& k, const uint32_t* f, int32_t n, FactorList* list) {
    const bool bits = k.h == 0 && k.p == 2 && !k.t.f.table;
    ScratchMark mark = scratch_mark();
    FactorList parts, products;
    FactorRandom random;
    open_list(&parts, k, n);
    open_list(&products, k, n);
    bool good = square_free_parts(k, f, n, &parts);
    for (int32_t i = 0; i < parts.count; i++) {
        FactorPart& part = parts.part[i];
        if (bits)
            distinct_degrees_bits(part.c, part.degree, part.multiplicity, &products);
        else if (good)
            good = distinct_degrees(k, part.c, part.degree, part.multiplicity, &products);
        else
            append_1(&products, k, part.c, part.degree, part.degree, part.multiplicity);
    }
    for (int32_t i = 0; i < products.count; i++) {
        if (bits)
            equal_degrees_bits(products.part[i], &random, list);
        else
            good = equal_degrees(k, products.part[i], &random, list) && good;
    }
    scratch_release(mark);
    polled_sort(list->part, list->count, FactorOrder{k.size});
    return good;
}
}  // namespace tolvex
