#pragma once
/// matrix/work.h: work arrays, which matrix operations borrow for their elements.
///
/// Invariant  claims are strictly nested: the last one claimed is given back first. Number p, from 1, is
///            workhead[p - 1]. Work arrays are kept once they have been allocated.
/// Ownership  the claim gives room; what the slots point to belongs to whoever filled them.
/// Raises     88 new_worknode: all 20 are claimed.
#include "quoly/quoly.h"

#include <cstdint>
namespace tolvex {
inline constexpr int32_t k_greatest_array = 1000000;  // elements of a dense array or of a work array
inline constexpr int32_t k_work_arrays = 20;
using workptr = quolyptr;  // k_greatest_array elements
inline workptr workhead[k_work_arrays] = {};
inline int32_t first_available = 1;  // writers: new_worknode, free_work, the way to level 1

/// The shape of an intermediate matrix; arrsize 0: a scalar.
struct arr_descr {
    int64_t arrsize;
    int32_t rows;
};

/// *p := the number of the work array that has been claimed; false after error 88. `symbol`: what the report
/// names, nil the current token.
bool new_worknode(int32_t* p, const char* symbol = nullptr);
/// Gives back the array claimed last.
void free_work();
}  // namespace tolvex
