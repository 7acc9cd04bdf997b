#pragma once
/// poly/poly.h: the recursive sparse polynomial and the polynomial variable.
///
///   x^2 y + 3x + 5 with x at level 1, y at level 2:
///   (exp 2) ──next──► (exp 1) ──next──► [leaf 5]
///      │ pcoef           │ pcoef
///   (exp 1)           [leaf 3]
///      │ pcoef
///   [leaf 1]
///
/// Purpose    one chain of terms a level, in strictly decreasing exp, coefficients in deeper levels.
/// Invariant  - a constant is one leaf: numb true, exp 0, next nil; zero is the leaf 0; nil is no
///              polynomial.
///            - the constant term inside a chain is a leaf node in that chain (numb true, exp 0): x + 5
///              is (exp 1 -> leaf 1), leaf 5. A term of exp 0 over a number stands nowhere
///              (remove_dummy).
///            - a level that does not occur is skipped by a pad: one term of exp 0 over a polynomial. A
///              term of exp 0 over a polynomial is legal alone (a pad) or last (x + y).
///            - no term has the coefficient 0.
///            - under laurent exponents may be negative; the exponent-0 leaf may then have a next, also
///              at the head: "is a number" always means numb and next nil (is_number).
/// Ownership  a polynode owns its coefficient and the rest of its chain.
/// Modes      in lintmode leaves hold their value in lint.
#include "language/tokens/token.h"
#include "numbers/number.h"
#include "poly/poly_modes.h"
#include "storage/pool.h"

#include <cstdint>
#include <type_traits>
namespace tolvex {
struct polynode;
using poly = polynode*;
using polyptrr = poly*;
struct polynode {
    int32_t exp;
    boolean numb;  // true: a leaf, ncoef is live
    poly next;     // next term, of lower exp
    union {
        imptr ncoef;
        poly pcoef;
    };
};
static_assert(sizeof(polynode) == 24 && std::is_trivially_destructible_v<polynode>);
inline constexpr int32_t polynodesize = 24;

inline poly polygarb = nullptr;
inline poly polywait = nullptr;  // nodes over long polynomials that are given back later   writers: free_poly

/// Called when no free node is left: gives back some of what waits (free_poly).
[[gnu::cold]] void refill_nodes();
/// *p := a node, contents undefined.
inline void newpoly(polyptrr p) {
    if (__builtin_expect(polygarb == nullptr, 0)) refill_nodes();
    *p = pool_pop<&polynode::next>(polygarb, polystash);
}
/// Gives back one node alone.
inline void free_node(poly p) { pool_push<&polynode::next>(polygarb, p); }
/// Gives p->ncoef a new number of size 0 and makes p a leaf without next.
inline void init_poly_node(poly p) {
    p->numb = 1;
    p->exp = 0;
    p->next = nullptr;
    newimag(&p->ncoef);
}
/// *p := a term with this exponent over the coefficient c (not a number when exp is 0), next nil. c is owned
/// by it.
inline void new_term(polyptrr p, int32_t exp, poly c) {
    newpoly(p);
    (*p)->exp = exp;
    (*p)->numb = 0;
    (*p)->next = nullptr;
    (*p)->pcoef = c;
}
/// True if p is a number: a leaf with no next.
inline bool is_number(const polynode* p) { return p->numb && p->next == nullptr; }

/// Gives back a whole polynomial; nil is allowed; *p := nil. Recursion only over levels. Of a very long one a
/// part waits until nodes are wanted, so that a call takes a few milliseconds at most.
void free_poly(polyptrr p);
void special_free_poly(polyptrr p);  ///< the same, chains given back whatever the mode
/// Gives back at most so many terms of what waits. True if some still do.
bool free_waiting(int64_t terms);

struct polydata;
using polypt = polydata*;
/// A prime and a root of a modding polynomial modulo it.
struct RootPrime {
    int32_t prime, root;
};
/// One polynomial variable. p, expon, field and what follows aux_num belong to modding out (field/modding.h).
struct polydata {
    tokentipe let;
    int32_t polycut;      // cutoff of Karatsuba at this level; starts as poly_cutoff
    int32_t expon;        // degree of the modding polynomial
    poly p;               // the modding polynomial, monic, in this variable and deeper ones; nil: none.
                          // t^n + a is kept as the number -a
    boolean field;        // this level belongs to the field tower
    int16_t depth;        // level: 1 for the first entry of polynames
    int16_t aux_num;      // number of second auxiliary primes
    RootPrime* gcd_data;  // these, by falling primes; from checked_malloc
    poly rational_p;      // in modular mode: p as it was before, chains; nil: declared in modular mode
    polypt next;
};
void newpt(polypt* p);  ///< a fresh variable record: polycut := poly_cutoff, all data empty
void free_pt(polypt* p);

inline polypt pt_garb = nullptr;
inline polypt polynames = nullptr;         // list of variables, level 1 first  writers: poly/poly_vars
inline polypt pseudo_polynames = nullptr;  // polynames if a level has a modding polynomial
                                           //                                   writers: reset_pseudo_poly
inline int32_t number_polys = 0;           // length of polynames               writers: poly/poly_vars
inline polypt dodo = nullptr;              // 78 internal names a1..z1, a2.., a3..
inline poly poly_1 = nullptr;              // the constant 1, right in either mode; never consumed
inline constexpr int32_t k_max_polys = 150;
inline constexpr int32_t k_levels = 160;  // size of every array indexed by level
inline constexpr int32_t k_leaf_depth = 16384;

/// Tests the form above against `levels` variables (checked build; deep: leaves as well).
bool poly_check(const polynode* p, int32_t levels);
}  // namespace tolvex
