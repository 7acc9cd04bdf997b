#pragma once
/// matrix/poly_matrix.h: a matrix of polynomials as flat arrays, and its determinants at points.
///
///   entries ──stage 0──► values at t_1 ──stage 1──► values at t_2 ... ──last──► words, sixteen points each
///
/// Purpose    which terms become one when a variable gets a value is the same for all points and all primes:
///            it is found out once, and every evaluation runs through arrays of words.
/// Invariant  entries that are 0 are not stored; a variable has the same place in all arrays "by variable",
///            the one of the greatest degree the last, so that most points share the work on the others.
/// Ownership  everything lies in scratch memory of the caller's mark; the numbers of the entries stay where
///            they are, so that the entries must not change meanwhile.
/// Modes      Z, a prime modulus, a table field; for primes of the caller's choice also the residues modulo
///            any number, as integers.
#include "matrix/lattice.h"
#include "poly/packed.h"
#include "quoly/quoly.h"
namespace tolvex {
/// The terms that are left when some variables have values, and what becomes of them with the next one.
struct PolyStage {
    int64_t count;
    int32_t* exp;     // of the next variable
    int64_t* target;  // the term of the next stage; nil in the last stage
    int32_t most;     // greatest exponent
};
struct PolyMatrix {
    int32_t n;
    int32_t vars;
    int32_t levels;                  // levels that occur, and more
    int32_t level[k_lattice_vars];   // by variable, from 0
    int32_t low[k_levels];           // by level: exponents of entries are counted from here
    int32_t degree[k_lattice_vars];  // by variable: of the determinant, at most; the divisor's taken off
    int64_t total;                   // total degree of the determinant, at most
    int32_t minor_degree[k_lattice_vars];  // by variable: of minors with a row less, at most
    int64_t minor_total;
    bool zero;        // no term of the determinant's expansion is other than 0
    bool divided;     // the last entry is the divisor
    int64_t entries;  // stored, the divisor included
    int64_t* place;   // of an entry: row n + column; of the divisor n n
    int64_t terms;
    const number** leaf;  // the numbers of the terms, entry after entry:
    int64_t* first;       // first[e]..first[e + 1] - 1
    PolyStage stage[k_lattice_vars];
    int64_t* start;  // terms of entry e in the last stage: start[e]..start[e + 1] - 1
};
enum class PolyPurpose {
    determinant,
    root,     // common monomials are not taken out, as with a divisor; exponents must not be negative then
    adjoint,  // a determinant 0 is no end
};
/// The n by n matrix a, column by column, no element nil, all numbers and polynomials, one of them no number;
/// `divisor` nil or a polynomial that the determinant is divided by. False: too many variables, exponents too
/// wide, or a divisor of greater degree than the determinant (m->zero tells if that is 0 for sure). Polls.
bool make_poly_matrix(PolyMatrix* m, const quoly* a, int32_t n, const polynode* divisor, PolyPurpose purpose);

/// Images in one field.
struct PolyImages {
    const PolyMatrix* m;
    const Lattice* l;
    WordField f;
    uint32_t* point[k_lattice_vars];  // by variable, consecutive
    uint32_t* value;                  // at all points of the lattice, the divisor's value divided out; of all
                                      // elements of the adjoint, row by row, one after the other
    bool adjoint;                     // not the determinant is wanted but the adjoint
    uint32_t* coef[k_lattice_vars];   // by stage: the numbers of its terms
    double *power, *coef_lane, *lane;  // of the last stage in a prime field
    int64_t power_batch;               // of the points that `power` stands for, -1: none
    bool all_powers;                   // `power` has room for all batches
    uint32_t *word, *work;             // sixteen images; one of them under elimination
    int32_t* row_at;                   // where each row goes, so that pivots are seldom 0
    bool ordered, negative;
    bool gathers;            // points of several lines share the lanes
    int32_t gathered;        // images that wait in `word`
    uint32_t over[16];       // the divisor's values of these
    uint32_t* target[16];    // where their values go
    uint64_t root_exponent;  // to which values are raised, 1 unless a root is wanted
};
/// Room for images; points, values and the field follow. Scratch of the caller's mark.
void open_images(PolyImages* i, const PolyMatrix* m, const Lattice* l, bool adjoint);
/// i->value := the coefficients of the determinant, or of each element of the adjoint, over f, in the order
/// of the lattice. Numbers of the entries are reduced into f unless it is the ring in force. False: the
/// divisor has had a zero at each set of points that was tried, or f has too few elements. Polls.
bool interpolate_image(PolyImages* i, const WordField& f);
}  // namespace tolvex
