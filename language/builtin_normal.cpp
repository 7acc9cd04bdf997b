// Hermite, Smith, MSmith: normal forms of matrices of integers.
#include "language/builtin_table.h"
#include "language/reduction_call.h"
#include "matrix/hermite.h"
#include "matrix/smith.h"
namespace tolvex {
using enum ReductionSlot;
static constexpr ReductionForm k_hermite = {.reduce = intcolred,
                                            .slots = 4,
                                            .slot = {alpha, beta, alphinv, betinv},
                                            .integers_only = true},
                               k_smith = {.reduce = intnormal,
                                          .slots = 4,
                                          .slot = {alpha, beta, alphinv, betinv},
                                          .integers_only = true},
                               k_msmith = {.reduce = modular_smith,
                                           .number = TrailingNumber::value,
                                           .integers_only = true};

/// Hermite([a], [alpha], [beta], [alphinv], [betinv]).
void builtin_Hermite(BuiltinCall& call) { reduction_call(call, k_hermite); }

/// Smith([a], [alpha], [beta], [alphinv], [betinv]).
void builtin_Smith(BuiltinCall& call) { reduction_call(call, k_smith); }

/// MSmith([a]), MSmith([a], d): the Smith form modulo twice a multiple d of its product.
void builtin_MSmith(BuiltinCall& call) { reduction_call(call, k_msmith); }
}  // namespace tolvex
