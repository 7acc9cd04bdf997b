#pragma once
/// language/integer_arrays.h: elements of arrays in machine words.
///
/// Raises     27, 28, 61, 121, 129 subscripts and arrays; 227 an element that is no word.
#include "language/array_elements.h"
#include "language/integer_words.h"
namespace tolvex {
/// The element that was read last in front of a ":", for the assignment there.
struct WordElement {
    nameptr name, colon;  // where it begins, and the ":" behind it
    ElementTarget target;
};
inline WordElement word_element_read = {};

/// The element of the array named at `node`, the "[" being the current token. An entry that is not there is
/// 0.
void word_element(WordReader& r, nameptr node, int32_t* value);
/// True if the target has a value.
bool word_element_exists(const ElementTarget& target);
/// The word that the target has, 0 if it has none.
int32_t word_of_element(const ElementTarget& target);
/// The target takes the word; a 0 is no entry of a sparse array.
void write_word_element(const ElementTarget& target, int32_t word);
}  // namespace tolvex
