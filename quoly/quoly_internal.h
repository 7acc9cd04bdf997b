#pragma once
/// quoly/quoly_internal.h: what the files of the four operations share.
///
/// Purpose    views of operands as fractions, and the ends of every operation: what is computed is put
///            into the target record, classified.
/// Ownership  a view borrows; receive_* use up what they are given and give back the old parts of *p last, so
///            that an operand may be the target.
#include "numbers/limbs.h"
#include "quoly/quoly.h"
namespace tolvex {
/// Which operands an operation may use up.
enum Uses : uint32_t { k_keep = 0, k_use_n = 1, k_use_m = 2, k_use_both = 3 };

/// An operand as numerator and denominator, without a copy: a number stands in a leaf of the view itself.
struct QuolyView {
    polynode leaf;
    poly numer;
    poly denom;  // nil: none
    explicit QuolyView(const quolynode* q) {
        if (q->numb) {
            leaf = {0, 1, nullptr, {q->ncoef}};
            numer = &leaf;
            denom = nullptr;
        } else {
            numer = q->numer;
            denom = q->denom;
        }
    }
    QuolyView(const QuolyView&) = delete;
    QuolyView& operator=(const QuolyView&) = delete;
};

/// The record of the result: *p without its old parts, or a new one. numb, rat, arr_arg are 0, denom is nil.
quoly quoly_target(quolyptr p);
/// The same as a numb with a number to write to; a number that was there is used again.
imptr numb_target(quolyptr p);
void receive_number(quolyptr p, imptr n);  ///< *p := n; the record n is used up
void receive_poly(quolyptr p, poly n);     ///< *p := n, a number or not
/// *p := numer / denom, where the two are coprime, the denominator monic or positive; nil: none. Classifies:
/// a number as denominator is divided in or makes a rational number; 0 is error 210.
void receive_fraction(quolyptr p, poly numer, poly denom);
/// *p := numer / denom for coprime magnitudes; denom is not 0. Parts of *p may have been operands.
void receive_rational_limbs(quolyptr p, Limbs numer, bool negative, Limbs denom);
/// The same for words.
void receive_rational_words(quolyptr p, int64_t numer, int64_t denom);

/// Outside lintmode: true if q is a number or a rational number.
inline bool is_rational(const quolynode* q) { return q->numb || q->rat; }
/// True if a rational q stands in words of one digit: *n, *d.
inline bool rational_words(const quolynode* q, int32_t* n, int32_t* d) {
    const number* top = q->numb ? q->ncoef : q->numer->ncoef;
    if (top->size != 1) return false;
    *n = top->head->value;
    *d = 1;
    if (q->numb) return true;
    const number* bottom = q->denom->ncoef;
    if (bottom->size != 1) return false;
    *d = bottom->head->value;
    return true;
}
/// After an operation that was allowed to use up n or m: gives back what is left of them, unless it is *p.
void drop_used(quoly n, quoly m, quolyptr p, uint32_t uses);

/// A polynomial that is borrowed from an operand, or lent by one that the operation uses up, or fresh.
struct Factor {
    poly p;
    bool fresh;
    bool lent = false;  // may become part of the result as it stands
};
inline Factor borrowed(poly p) { return {p, false}; }
void drop_factor(Factor* f);
/// The factor as a tree of its own.
poly factor_taken(Factor* f);
/// f := f, g := g without their greatest common divisor. Neither is 0. g may hold nil (1).
void cancel(Factor* f, Factor* g);
/// Removes from numer and denom the monomial that divides denom (it moves to numer). laurent.
void move_monomial(polyptrr numer, polyptrr denom);
/// What ends an operation on two canonical fractions: after products in reduced variables (or of monomials
/// under laurent) the parts may be out of form. denom may be nil or 0.
void settle_fraction(polyptrr numer, polyptrr denom);
/// numer, denom (not nil, not 0, coprime) with the sign, leading number and monomial of a canonical fraction.
void normalise_parts(polyptrr numer, polyptrr denom, bool laur);
}  // namespace tolvex
