// Extensions of small prime fields, for algorithms that want more points than the field has. Elements are
// stored as logarithms, sums go through Jacobi's (Zech's) logarithm of 1 + g^n (Lidl and Niederreiter,
// "Finite Fields").
#include "poly/word_field.h"
#include "storage/memory.h"

#include <cstdlib>
namespace tolvex {
namespace {
constexpr uint32_t k_small_prime = 1024;    // primes below have extensions
constexpr uint32_t k_wanted_points = 4096;  // degree: the least that gives as many
constexpr int k_most_digits = 12;           // 2^12 = 4096

ExtensionTables tables = {};  // of the prime used last

/// A polynomial below the degree `digits`, as its digits; the modulus is x^digits - tail.
struct Generator {
    uint32_t prime, elements;
    int digits;
    uint32_t tail[k_most_digits];
};
}  // namespace

// v := x v.
static void times_x(const Generator& g, uint32_t* v) {
    uint32_t top = v[g.digits - 1];
    for (int i = g.digits - 1; i > 0; i--) v[i] = (v[i - 1] + top * g.tail[i]) % g.prime;
    v[0] = top * g.tail[0] % g.prime;
}

static uint32_t code_of(const Generator& g, const uint32_t* v) {
    uint32_t code = 0;
    for (int i = g.digits - 1; i >= 0; i--) code = code * g.prime + v[i];
    return code;
}

// log[code of x^n] := n for all n; false if x generates less than all elements.
static bool take_logarithms(const Generator& g, uint32_t* log) {
    uint32_t v[k_most_digits] = {1};
    for (uint32_t n = 0; n < g.elements - 1; n++) {
        uint32_t code = code_of(g, v);
        if (n > 0 && code == 1) return false;
        log[code] = n;
        times_x(g, v);
    }
    return code_of(g, v) == 1;
}

// The first tail, counted in base p, for which x is a primitive element: x^n returns to 1 first at n = p^k -
// 1, which only an irreducible modulus allows.
static void find_generator(Generator& g, uint32_t* log) {
    for (uint32_t candidate = 1;; candidate++) {
        uint32_t rest = candidate;
        for (int i = 0; i < g.digits; i++) {
            g.tail[i] = rest % g.prime;
            rest /= g.prime;
        }
        if (g.tail[0] != 0 && take_logarithms(g, log)) return;
    }
}

static void build_tables(uint32_t prime) {
    Generator g = {};
    g.prime = prime;
    g.elements = prime;
    g.digits = 1;
    while (g.elements < k_wanted_points) {
        g.elements *= prime;
        g.digits++;
    }
    auto* log = static_cast<uint32_t*>(checked_malloc(g.elements * sizeof(uint32_t)));
    find_generator(g, log);
    free(tables.zech);
    free(tables.embed);
    tables.prime = 0;  // nothing valid while the allocator may fail
    tables.zech = nullptr;
    tables.embed = nullptr;
    tables.zech = static_cast<uint32_t*>(checked_malloc(g.elements * sizeof(uint32_t)));
    tables.embed = static_cast<uint32_t*>(checked_malloc(prime * sizeof(uint32_t)));
    tables.order = g.elements - 1;
    for (uint32_t code = 1; code < g.elements; code++) {
        uint32_t sum = code % prime == prime - 1 ? code - (prime - 1) : code + 1;
        tables.zech[log[code]] = sum == 0 ? tables.order : log[sum];
    }
    tables.embed[0] = 0;
    for (uint32_t c = 1; c < prime; c++) tables.embed[c] = log[c] + 1;
    tables.minus_one = log[prime - 1];
    tables.prime = prime;
    free(log);
}

WordField word_field_enlarged() {
    WordField f = word_field_ring();
    if (f256) f.p = 65536;
    if (finf || f.p >= k_small_prime) return f;
    if (tables.prime != f.p) build_tables(f.p);
    f.table = true;
    f.ext = &tables;
    f.p = tables.order + 1;
    return f;
}

bool wf_restrict(const WordField& f, uint32_t c, uint32_t* element) {
    *element = c;
    if (f.ext == nullptr) return !f256 || c < 256;
    for (uint32_t e = 0; e < f.ext->prime; e++)
        if (f.ext->embed[e] == c) {
            *element = e;
            return true;
        }
    return false;
}

uint32_t wf_ext_mul(const ExtensionTables& t, uint32_t a, uint32_t b) {
    if (a == 0 || b == 0) return 0;
    uint32_t s = (a - 1) + (b - 1);
    return (s >= t.order ? s - t.order : s) + 1;
}

uint32_t wf_ext_neg(const ExtensionTables& t, uint32_t a) { return wf_ext_mul(t, a, t.minus_one + 1); }

// g^i + g^j = g^i (1 + g^(j - i)).
uint32_t wf_ext_add(const ExtensionTables& t, uint32_t a, uint32_t b) {
    if (a == 0) return b;
    if (b == 0) return a;
    uint32_t gap = b >= a ? b - a : b + t.order - a;
    uint32_t z = t.zech[gap];
    if (z == t.order) return 0;
    uint32_t s = (a - 1) + z;
    return (s >= t.order ? s - t.order : s) + 1;
}
}  // namespace tolvex
