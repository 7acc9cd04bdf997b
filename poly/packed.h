#pragma once
/// poly/packed.h: polynomials as flat arrays of terms inside one operation.
///
///   tree  ──pack_measure──► PackMeasure (extent of each level)  ──pack_plan──► PackPlan (one radix a level)
///         ──pack_words ...──►  PackTerms: index and coefficient of each term, index falling
///
/// Purpose    the exponents e_1 .. e_k of a term become one word, its index in a box of mixed radix; products
///            add indexes, and as the first level has the greatest weight, falling index is the order of the
///            recursive form. (Kronecker's substitution; for flat arrays see Monagan and Pearce, "Sparse
///            polynomial multiplication and division in Maple 14".)
/// Invariant  a plan has no level that does not occur; every exponent lies in 0..radix-1 of its level.
///            Indexes are below 2^62.
/// Ownership  arrays live in scratch memory: take a mark before, release after.
/// Modes      residues are read as they stand, or modulo the prime of a WordField; integers as words.
#include "poly/pack_measure.h"
#include "poly/word_field.h"

#include <cstdint>
namespace tolvex {
struct PackPlan {
    int32_t depth;             // levels walked: trees reach no deeper
    int32_t count;             // levels in use
    int32_t level[k_levels];   // their positions, rising
    int32_t low[k_levels];     // exponent that is written as digit 0
    int64_t radix[k_levels];   // digits of the level
    int64_t weight[k_levels];  // of one unit of the exponent, falling to 1
    int64_t box;               // product of all radixes
};
/// The plan for exponents low..high of each of `levels` levels. False: the box exceeds 2^62.
bool pack_plan(const int32_t* low, const int32_t* high, int32_t levels, PackPlan* plan);

struct PackTerms {
    int64_t count;
    int64_t* index;
    union {
        uint32_t* residue;    // elements of a WordField
        int64_t* word;        // integers below 2^62 in magnitude
        const number** leaf;  // the leaves themselves, to be reduced modulo several primes
    };
};
/// The residues of p, zeros left out. low: subtracted from the exponents (of the plan when nil).
PackTerms pack_residues(const polynode* p, const PackPlan& plan, const int32_t* low, int64_t terms,
                        const WordField& f);
/// The same with the levels whose point is not 0 set to point (an integer, or a code of the field) and left
/// out of the index; terms that have become alike are added up. A level's power starts at its exponent low.
PackTerms pack_values(const polynode* p, const PackPlan& plan, const int32_t* low, int64_t terms,
                      const WordField& f, const uint32_t* point);
/// The integers of p, whose chains have at most k_word_digits digits.
PackTerms pack_words(const polynode* p, const PackPlan& plan, const int32_t* low, int64_t terms);
inline constexpr int32_t k_word_digits = 2;
/// The leaves of p, which stay where they are while p is not changed.
PackTerms pack_leaves(const polynode* p, const PackPlan& plan, const int32_t* low, int64_t terms);

/// The integers of p as digits in an array, for residues modulo many primes: term i has the digits
/// digit[start[i]..start[i+1]), lowest first.
struct PackDigits {
    int64_t count;
    int64_t* index;
    int64_t* start;
    uint32_t* digit;
    bool* negative;
};
PackDigits pack_digits(const polynode* p, const PackPlan& plan, const int32_t* low, int64_t terms);
/// What pack_residues gives for the same polynomial.
PackTerms residues_of_digits(const PackDigits& p, const WordField& f);

/// Makes the leaf number of term i.
using LeafMaker = void (*)(void* source, int64_t i, imptr leaf);
/// A fresh tree of the terms index[0..count), falling; low: added to the exponents (of the plan when nil).
poly pack_tree(const PackPlan& plan, const int32_t* low, const int64_t* index, int64_t count, LeafMaker leaf,
               void* source);
void leaf_of_residue(void* terms, int64_t i, imptr leaf);  ///< source: PackTerms with residues, modular mode
void leaf_of_word(void* terms, int64_t i, imptr leaf);     ///< source: PackTerms with words
}  // namespace tolvex
