// Reductions of arrays: Rowreduce, Colreduce, Redrowech, Normalize, FFLU, FFLUC, Pseudet.

#include "language/builtin_table.h"
#include "language/reduction_call.h"
#include "matrix/fraction_free.h"
#include "matrix/row_reduce.h"
namespace tolvex {
using enum ReductionSlot;
static constexpr ReductionForm k_rowreduce = {.reduce = rowreduce,
                                              .slots = 4,
                                              .slot = {alpha, beta, alphinv, betinv},
                                              .number = TrailingNumber::count},
                               k_colreduce = {.reduce = colreduce,
                                              .slots = 4,
                                              .slot = {alpha, beta, alphinv, betinv},
                                              .number = TrailingNumber::count},
                               k_redrowech = {.reduce = red_row_ech, .slots = 2, .slot = {alpha, alphinv}},
                               k_normalize = {.reduce = normalize,
                                              .slots = 4,
                                              .slot = {alpha, beta, alphinv, betinv}},
                               k_fflu = {.reduce = fract_free_lu,
                                         .slots = 6,
                                         .slot = {first_extra, second_extra, alpha, alphinv, beta, betinv}},
                               k_ffluc = {.reduce = fract_free_lu_columns,
                                          .slots = 6,
                                          .slot = {first_extra, second_extra, alpha, alphinv, beta, betinv}},
                               k_pseudet = {.reduce = pseudo_determinant,
                                            .slots = 2,
                                            .slot = {first_extra, second_extra},
                                            .keeps_array = true};

/// Rowreduce([a], [alpha], [beta], [alphinv], [betinv], cut).
void builtin_Rowreduce(BuiltinCall& call) { reduction_call(call, k_rowreduce); }

/// Colreduce([a], [alpha], [beta], [alphinv], [betinv], cut).
void builtin_Colreduce(BuiltinCall& call) { reduction_call(call, k_colreduce); }

/// Redrowech([a], [alpha], [alphinv]).
void builtin_Redrowech(BuiltinCall& call) { reduction_call(call, k_redrowech); }

/// Normalize([a], [alpha], [beta], [alphinv], [betinv]).
void builtin_Normalize(BuiltinCall& call) { reduction_call(call, k_normalize); }

/// FFLU([a], [pivots], [lower], [alpha], [alphinv], [beta], [betinv]).
void builtin_FFLU(BuiltinCall& call) { reduction_call(call, k_fflu); }

/// FFLUC([a], [pivots], [lower], [alpha], [alphinv], [beta], [betinv]).
void builtin_FFLUC(BuiltinCall& call) { reduction_call(call, k_ffluc); }

/// Pseudet([s], [rows], [columns]).
void builtin_Pseudet(BuiltinCall& call) { reduction_call(call, k_pseudet); }
}  // namespace tolvex
