#pragma once
/// language/array_elements.h: single elements of arrays in expressions: subscripts, reading, storing.
///
/// Purpose    `x[i]`, `x[i,j]`, `%[k][i,j]`, `<[i]` as factors, as targets of assignments, and as places
///            that are written to later.
/// Invariant  a place that outlives the reading of its subscripts is kept as the stamp of its array and
///            the number of the element, never as a location: arrays are cancelled, converted, and move
///            in the store.
/// Raises     27, 28, 61, 118, 121, 175, 217..221, 314.
#include "language/evaluator.h"
#include "matrix/array.h"
namespace tolvex {
/// One or two subscripts as the user counts them.
struct Subscripts {
    int64_t i, j;
    bool two;
};
/// Reads subscripts, from the first token of the first one up to and over the closing sign (or "]"). They are
/// ordinary integers in modular arithmetic too. False after error 61 or 118.
bool evalcoords(FILE* inf, nameptr* flag, char closer, char separator, Subscripts* s);
/// An expression that must be an integer, as a word; what does not fit is greater than any subscript. False
/// after error `not_a_number`.
bool read_plain_integer(FILE* inf, nameptr* flag, Err not_a_number, int64_t* value);

/// `[a] r1, r2, ...` from the "[": the columns, as the user counts them, of the entries of these rows of a
/// sparse array, in rising order, each once; in scratch memory. False after error 27, 28, 47, 118 or 335.
bool columns_of_rows(FILE* inf, nameptr* flag, const int32_t** columns, int32_t* count);

/// An element of the array itself.
struct ElementTarget {
    tokentipe name;  // of its array
    int32_t stamp;
    int64_t index;  // from 0, column by column
};
/// The element read last in front of ":", for the assignment that follows: it is the one at `at`.
struct ElementRead {
    quolyptr at;
    ElementTarget target;
};
inline ElementRead element_read = {};

/// The element behind a name, whose "[" is the current token: *qp := where the value is, or n with the value
/// 0. In front of an assignment *qp may lead to no value.
void new_arretrieve(FILE* inf, tokentipe& name, nameptr* flag, quolyptr* qp, quolyptr n);
/// The same for `<`, the "[" being the current token, and for "%".
void system_element(FILE* inf, nameptr* flag, quolyptr* qp, quolyptr n);
void element_of_place(FILE* inf, nameptr* flag, quolyptr* qp, quolyptr n);
/// The element of the array at a place, its "[" being the current token.
void element_at_place(FILE* inf, nameptr* flag, arrptr a, quolyptr* qp, quolyptr n);
/// "%[k]", from the "%": the array at that place, nil after error 218 to 221.
arrptr read_array_place(FILE* inf, nameptr* flag);
/// The subscripts behind the current "[" as an element of the array `a` (or alias) of that name. False after
/// an error.
bool read_target(FILE* inf, nameptr* flag, arrptr a, const tokentipe& name, ElementTarget* target);

/// The array itself that a target belongs to, nil if it has gone.
arrptr array_of(const ElementTarget& target);
/// Where the value of the target is; nil: the array has gone, or a sparse one has no entry there.
quolyptr location_of(const ElementTarget& target);
/// The same for a place that is going to be changed: a missing value becomes 0, for a while also in a sparse
/// array. Error 28, and nil, if the array has gone.
quolyptr location_to_change(const ElementTarget& target);
/// A 0 in a sparse array goes.
void purge_element(const ElementTarget& target);
/// Where the number is that a new number may overwrite in place: nil if the element is another value, or
/// stands in a sparse array, in another ring, or in an operand.
quolyptr number_to_change(const ElementTarget& target);
/// The element takes the value, which is used up. False, and error 28 or 121, if the array has gone or
/// belongs to another ring.
bool store_element(const ElementTarget& target, quolyptr value);

/// While a level that an interrupt has opened is open, scalar expressions get no values out of matrices:
/// prints that there is no `what` there and sets the value at *qp to 0; true then.
bool refused_at_interrupt(const char* what, quolyptr* qp, quolyptr n);
/// Counts a use of an element without value, and warns; `which` names the array as the warning shows it;
/// nil, when an array is read as a whole: it does not.
void note_uninitialized(const char* which);
/// The same for an array of that name.
void note_uninitialized_in(const tokentipe& name);
/// The slot of dense element k of an array that is read as a whole: an element without value becomes 0,
/// with the warning that names no array.
quolyptr value_slot(const arrnode* a, int32_t k);
}  // namespace tolvex
