#pragma once
/// matrix/growth.h: how many terms the polynomials may have that a matrix gives rise to.
///
/// Purpose    the engines for determinants and characteristic polynomials are chosen by estimates of their
///            work.
/// Modes      any. No element has a denominator.
#include "poly/pack_measure.h"
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
struct EntryMeasure {
    PackMeasure box;     // exponents of all entries; the other counts are not kept
    double filled;       // share of the entries that are not 0
    double entry_terms;  // of an entry that is not 0, on average
};
/// Reads `count` entries, of which nil is 0. Polls.
void measure_entries(const quolynode* const* a, int64_t count, EntryMeasure* e);
/// The monomials that may occur in a product of k entries.
double product_monomials(const EntryMeasure& e, int32_t k);
/// The terms of a minor of k rows, at most.
double minor_terms(const EntryMeasure& e, int32_t k);
}  // namespace tolvex
