#pragma once
/// language/array_values.h: arrays as the evaluators see them: elements that somebody holds or has borrowed,
/// other rings, release.
///
/// Purpose    an array expression borrows the elements of a named array instead of copying them. Until it has
///            ended, values that are replaced are kept aside, and a sparse chain that changes is copied
///            first, so that the expression sees the values that the array had when it was read.
/// Invariant  borrowed_operands counts the operands of array expressions under way that share elements.
/// Raises     121 another ring; 139 an array parameter stands for it; 138, 170 cancelling.
#include "matrix/array.h"
namespace tolvex {
inline int32_t borrowed_operands = 0;

/// Operands that share elements of the array itself begin and end.
void begin_borrowing(arrptr a);
void end_borrowing(arrptr a);
/// *loc, which is not nil, is kept until no operand is borrowed. *loc := nil.
void bury(quolyptr loc);
/// To be called before the entries of a sparse array itself change: a chain that an operand shares is left to
/// it.
void about_to_change(arrptr a);

/// Error 121 if the values of the array belong to another ring than the one in force: true then.
bool refuse_array_of_other_ring(const arrnode* a, const tokentipe& name);
/// Calls f for every array that owns its elements, the system array last.
template <class Visit> inline void each_array(Visit f) {
    for (arrptr a : arr_store)
        for (; a != nullptr; a = a->next)
            if (!is_alias(a)) f(a);
    if (syst != nullptr) f(syst);
}
/// For changes of the variables: calls f for every element of arrays whose values belong to
/// the ring in force.
void for_each_array_value(void (*f)(quolyptr value, void* context), void* context);

/// Every value of the array itself is inherited by its holders or given back; dense slots are nil afterwards.
void release_elements(arrptr a);
/// Locations in the store from that of the array on are going to move: who holds one gets the value.
void settle_holders(const arrnode* a);
/// Cancels the array itself, whose elements have holders perhaps. It has no alias and lends nothing.
void cancel_array(arrptr a);
/// Cancels every array `listed` tells of, as far as they may be cancelled: the store moves together once. The
/// answer is the first that may not be cancelled, nil if all have gone; may_cancel() then raises its error.
arrptr cancel_arrays(bool (*listed)(const arrnode* a, const void* context), const void* context);
/// Makes the dense array itself sparse.
void convert_to_sparse(arrptr a);
/// True if the array may be cancelled; else error 138, 139 or 170, which names `name`.
bool may_cancel(arrptr a, const tokentipe& name);
/// removearray of the language: the newest array of that name is cancelled. With `fast` an absent one is left
/// alone. False after error 28, 138, 139 or 170, nothing having changed.
bool removearray(bool fast, tokentipe& name);
}  // namespace tolvex
