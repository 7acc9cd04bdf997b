#pragma once
/// language/reduction_call.h: the common form of all built-in functions that reduce a named array.
///
///   Name([a], [p], [q], ..., number)    Name(*[a], ...)       slots may be left empty between their commas
///
/// Purpose    reads the call, reduces a private copy, and stores [a] and the named results when the reduction
///            is complete, as `[p] := ...` would; sparse if [a] is sparse. Until then no array changes.
/// Raises     177 no "("; 178 no "["; 28 unknown [a]; 121 another ring; 244, 182 a part of an array; 40
///            no name for a result, or a name twice; 15 too many slots; 227 no number; 1 no ")"; 297, 139
///            a result that cannot change its shape; 26, 43 no room; 235 in modular mode, where the form
///            says so.
#include "language/builtin_args.h"
#include "matrix/reduction.h"
namespace tolvex {
/// What a slot receives.
enum class ReductionSlot : int32_t { alpha, beta, alphinv, betinv, first_extra, second_extra };
inline constexpr int32_t k_most_reduction_slots = 6;
enum class TrailingNumber : int32_t { none, count, value };

struct ReductionForm {
    void (*reduce)(Reduction* r, const ReductionOptions* options);
    int32_t slots = 0;
    ReductionSlot slot[k_most_reduction_slots] = {};
    TrailingNumber number = TrailingNumber::none;  // what may stand behind the last slot
    bool integers_only = false;                    // refused in modular mode
    bool keeps_array = false;                      // [a] is not rewritten
};

/// The whole call, from the name of the function to the ")"; *call.n: its value.
void reduction_call(BuiltinCall& call, const ReductionForm& form);
}  // namespace tolvex
