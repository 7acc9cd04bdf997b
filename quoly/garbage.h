#pragma once
/// quoly/garbage.h: how much stands on the free lists.
///
/// Purpose    the measures by which memory-hungry methods decide, and the report of `&G`. Records of
///            higher folders are counted through rows that those folders provide.
/// Modes      checked build: records in quarantine are on no list and are not counted.
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
/// Bytes on the free lists of digits, numbers, polynodes and quolynodes: all of them, walked in full.
int64_t garbsize();
/// The same up to a bound for each list, for tests in inner loops: the dearer, the higher the bounds.
int64_t fast_garbsize();
int64_t med_garbsize();
int64_t big_garbsize();  ///< quolynodes are not counted

/// Lines of the report that higher folders fill. ORDER GARBAGE_ROWS
enum class GarbageRow : int32_t {
    vars,
    arrays,
    sparse_rows,
    colms,
    matrix_cols,
    forms,
    conds,
    work_arrays,
    count
};
/// One such line.
struct GarbageSource {
    int64_t (*count)();    ///< records that are free
    int64_t record_bytes;  ///< their size in the total
    void (*list)();        ///< prints each of them on a line; nil: nothing to show
};
/// Makes a line known; the last source given counts.
void garbage_provide(GarbageRow row, const GarbageSource& source);
/// Bytes of the gcd stash, 0 without one: they count as system data.
void garbage_provide_gcd_stash(int64_t (*bytes)());

/// Prints the report; with x = 'G' each free record as well.
void garbage(int32_t x);
}  // namespace tolvex
