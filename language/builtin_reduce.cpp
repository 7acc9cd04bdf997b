// Reductions of arrays: Rowreduce, Colreduce, Redrowech, Normalize, FFLU, FFLUC, Pseudet.

#include "language/builtin_table.h"
#include "language/reduction_call.h"
#include "matrix/fraction_free.h"
#include "matrix/row_reduce.h"
namespace tolvex {
using enum ReductionSlot;

/// Rowreduce([a], [alpha], [beta], [alphinv], [betinv], cut).
void builtin_Rowreduce(BuiltinCall& call) {
    static constexpr ReductionForm form = {
        4, {alpha, beta, alphinv, betinv}, TrailingNumber::count, false, false, rowreduce};
    reduction_call(call, form);
}

/// Colreduce([a], [alpha], [beta], [alphinv], [betinv], cut).
void builtin_Colreduce(BuiltinCall& call) {
    static constexpr ReductionForm form = {
        4, {alpha, beta, alphinv, betinv}, TrailingNumber::count, false, false, colreduce};
    reduction_call(call, form);
}

/// Redrowech([a], [alpha], [alphinv]).
void builtin_Redrowech(BuiltinCall& call) {
    static constexpr ReductionForm form = {2,     {alpha, alphinv}, TrailingNumber::none, false,
                                           false, red_row_ech};
    reduction_call(call, form);
}

/// Normalize([a], [alpha], [beta], [alphinv], [betinv]).
void builtin_Normalize(BuiltinCall& call) {
    static constexpr ReductionForm form = {
        4, {alpha, beta, alphinv, betinv}, TrailingNumber::none, false, false, normalize};
    reduction_call(call, form);
}

/// FFLU([a], [pivots], [lower], [alpha], [alphinv], [beta], [betinv]).
void builtin_FFLU(BuiltinCall& call) {
    static constexpr ReductionForm form = {6,
                                           {first_extra, second_extra, alpha, alphinv, beta, betinv},
                                           TrailingNumber::none,
                                           false,
                                           false,
                                           fract_free_lu};
    reduction_call(call, form);
}

/// FFLUC([a], [pivots], [lower], [alpha], [alphinv], [beta], [betinv]).
void builtin_FFLUC(BuiltinCall& call) {
    static constexpr ReductionForm form = {6,
                                           {first_extra, second_extra, alpha, alphinv, beta, betinv},
                                           TrailingNumber::none,
                                           false,
                                           false,
                                           fract_free_lu_columns};
    reduction_call(call, form);
}

/// Pseudet([s], [rows], [columns]).
void builtin_Pseudet(BuiltinCall& call) {
    static constexpr ReductionForm form = {2,    {first_extra, second_extra}, TrailingNumber::none, false,
                                           true, pseudo_determinant};
    reduction_call(call, form);
}
}  // namespace tolvex
