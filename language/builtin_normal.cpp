// Hermite, Smith, MSmith: normal forms of matrices of integers.
#include "language/builtin_table.h"
#include "language/reduction_call.h"
#include "matrix/hermite.h"
#include "matrix/smith.h"
namespace tolvex {
/// With all four transformations.
static constexpr ReductionForm normal_form(void (*reduce)(Reduction* r, const ReductionOptions* options)) {
    return {4,
            {ReductionSlot::alpha, ReductionSlot::beta, ReductionSlot::alphinv, ReductionSlot::betinv},
            TrailingNumber::none,
            true,
            false,
            reduce};
}
static constexpr ReductionForm k_hermite_form = normal_form(intcolred), k_smith_form = normal_form(intnormal),
                               k_msmith_form = {0, {}, TrailingNumber::value, true, false, modular_smith};

/// Hermite([a], [alpha], [beta], [alphinv], [betinv]).
void builtin_Hermite(BuiltinCall& call) { reduction_call(call, k_hermite_form); }

/// Smith([a], [alpha], [beta], [alphinv], [betinv]).
void builtin_Smith(BuiltinCall& call) { reduction_call(call, k_smith_form); }

/// MSmith([a]), MSmith([a], d): the Smith form modulo twice a multiple d of its product.
void builtin_MSmith(BuiltinCall& call) { reduction_call(call, k_msmith_form); }
}  // namespace tolvex
