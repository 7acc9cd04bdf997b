#pragma once
/// language/builtin_arrays.h: how built-in functions read an array.
///
/// Raises     24, 28, 121, 177, 178, 218 to 221, and those of ranges.
#include "language/array_expre.h"
#include "language/array_values.h"
#include "language/builtin_args.h"
namespace tolvex {
/// The array of an argument [a], ([a], ...) or [a[..]].
struct ArrayArgument {
    arrptr a;             // the array itself
    ElementTarget first;  // its first element: name and stamp when it was read
    arrptr named;         // the record of the name: an alias, perhaps
    tokentipe name;       // as it was written
    bool open;            // "(" stands in front of it
    bool block;           // a part of it
    Block b;              // that part, else all of it
};
/// Reads over the name of the function and the array, up to and over its "]". False after an error.
bool read_command(BuiltinCall& call, ArrayArgument* x);
/// The same for further arguments: from the "[".
bool read_command_1(BuiltinCall& call, ArrayArgument* x);
/// To be called before the array is used when statements may have run since it was read: in a later argument,
/// or at a level that an interrupt has opened. False after error 28: it has gone or has another shape; 244: a
/// part of an array that has become sparse.
bool is_still_there(const ArrayArgument& x);
/// Reads over the ")" if there was a "(".
void end_command(BuiltinCall& call, const ArrayArgument& x);
/// To be called before elements change places: who holds one gets its value.
void about_to_move(arrptr a);

/// The order of values: numbers, polynomials by their monomials from the leading one on and then by their
/// coefficients, rational functions by numerator and denominator. -1, 0, 1.
int32_t compare_values(const quolynode* x, const quolynode* y);
/// -1, 0, 1 as the number x is below, equal to, above y: residues as 0 to modulus - 1.
int32_t compare_numbers(const number* x, const number* y);
}  // namespace tolvex
