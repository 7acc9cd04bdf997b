#pragma once
/// poly/size_estimates.h: cheap measures of polynomials, from which the strategies choose.
///
/// Purpose    each measure is compared with a fixed number by its callers; its walk ends as soon as the
///            answer is large enough for that, so that measuring costs a fraction of what it steers.
/// Invariant  nothing wraps: every result stays at its cap. A node is any polynode, a term is a leaf. A
///            constant is one node and one term; its degrees, heights and depths are 0.
/// Modes      any. Levels below field_depth belong to the tower: measures with an argument depth, the
///            level of the operand's top variable, take a coefficient there for a number.
#include "poly/poly.h"

#include <cstdint>
namespace tolvex {
// ---- nodes and terms: size_counts.cpp ------------------------------------------------------------------
int16_t node_total(const polynode* n);         ///< nodes, up to 1000
int16_t big_node_total(const polynode* n);     ///< nodes, up to 8000
int16_t new_node_total(const polynode* n);     ///< the same
int32_t bigg_node_total(const polynode* n);    ///< nodes, up to 1000000
int32_t bigger_node_total(const polynode* n);  ///< the same
int16_t poly_nodes(const polynode* n);     ///< nodes of the top chain and of the chains below it, up to 2000
int16_t fast_numterms(const polynode* n);  ///< terms, up to 2000
int16_t poly_numterms(const polynode* n);  ///< terms, up to 20000
int16_t qpoly_numterms(const polynode* n, int32_t depth = 0);   ///< terms down to the field, up to 1001
int16_t q_poly_numterms(const polynode* n, int32_t depth = 0);  ///< the same, up to 2000
int16_t fast_f_numterms(const polynode* n, int16_t depth);      ///< terms down to the field, up to 2000
int16_t f_poly_numterms(const polynode* n, int32_t depth = 0);  ///< the same, up to 20000; depth 0: all terms
int32_t fast_poly_length(const polynode* n, int32_t limit);     ///< terms of the top chain, up to limit + 1

/// deglist[d]: one more than the largest exponent that expon_node_total has met in level d.
inline int32_t deglist[k_levels];
inline constexpr int32_t k_box_overflow = 2147483629;
/// Nodes of n, whose top is level depth, without pads, up to 3200: a list is left once the count is above
/// 1600, so that more than that means large. init: deglist is begun afresh from depth on, and *expop is the
/// size of the dense box of exponents of the levels reached, k_box_overflow when it does not fit; else
/// deglist is added to and *expop is left alone.
int32_t expon_node_total(const polynode* n, int32_t depth, boolean init, int32_t* expop);

// ---- weighted sizes: size_mass.cpp ---------------------------------------------------------------------
inline constexpr int32_t k_mass_cap = 33554430;
inline constexpr int32_t k_better_mass_cap = 1073741824;
inline constexpr int32_t k_new_mass_cap = 268435456;
inline constexpr int32_t k_weight_cap = 10000000;
/// Digits of the coefficients, each weighted with depth * multplier * exponent at every level; multplier
/// counts for the leading term alone. Up to k_mass_cap. Under laurent a monomial weighs no more than the
/// levels it reaches.
int32_t poly_mass(const polynode* n, int32_t multplier, int32_t depth);
/// The same with (exponent + 1) / 2 and 1 more for each term. Up to k_better_mass_cap.
int32_t better_poly_mass(const polynode* n, int32_t multplier, int32_t depth);
/// The same with depth * exponent at every level and for every term. Up to k_new_mass_cap.
int64_t new_poly_mass(const polynode* n, int32_t depth);
/// About the bytes of storage: 13 a term, 31 a number and 8 a digit.
int64_t simple_poly_mass(const polynode* n);
int32_t very_simple_poly_mass(const polynode* n);  ///< the same, left as soon as it is above 250
int32_t more_simple_poly_mass(const polynode* n);  ///< the same, left as soon as it is above 350
/// What one node of a chain adds to simple_poly_mass.
int64_t simple_node_mass(const polynode* n);
/// Sum over the terms of the product of the exponents other than 0, up to k_weight_cap; a number weighs 1.
int32_t poly_weight(const polynode* n, int32_t depth);
/// Bit length of the largest coefficient; residues of Z/p count as the nearest to 0. -1: p is nil.
int32_t max_digits(const polynode* p);

// ---- shape: size_shape.cpp -----------------------------------------------------------------------------
/// Levels below the first real one on the deepest path, pads not counted.
int32_t poly_height(const polynode* p);
/// Levels below the top that are in use, pads counted; with a field only those above it.
int32_t quick_depth_below(const polynode* p, int32_t depth);
/// The deepest level above the field in which some exponent is not 0; 0 when there is none.
int32_t max_below(const polynode* p, int32_t depth);
int32_t polys_there(const polynode* p, int32_t depth);  ///< variables above the field that occur
boolean height_is_1(const polynode* n);                 ///< all coefficients are numbers
/// True if no coefficient has more than one level, judged by the first four terms of every chain.
boolean depth_only_2(const polynode* n);
/// *ans := the larger of *ans and the largest exponent at relative level lev (1: the top); a level that does
/// not occur has the exponent 0. Start with k_no_degree.
void max_degree(const polynode* q, int32_t lev, int32_t* ans);
inline constexpr int32_t k_no_degree = -2147483647;
/// The total degree in the levels above the field, left as soon as it reaches stop.
int32_t sum_degrees(const polynode* p, int32_t depth, int32_t stop);
/// The relative levels [*start, *lim] in which contents in several levels are looked for, from the depths and
/// the size of two operands.
void poly_level_depth(int32_t ulevel, int32_t vlevel, int32_t size, int32_t* start, int32_t* lim);
}  // namespace tolvex
