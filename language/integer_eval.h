#pragma once
/// language/integer_eval.h: expressions in machine words.
///
/// Purpose    after the statement Integer the rest of a body is evaluated with int32 arithmetic: no value
///            record is made and no token is copied. It reads stored lists only.
/// Invariant  words wrap silently; in modular mode they are residues. Between two routines the cursor
///            *flag stands on the node of the current token.
/// Modes      any; in modular mode products and sums are reduced, and "/" multiplies by the inverse.
/// Raises     1, 19, 22, 63, 68, 129, 177, 202, 226, 227, 240, 279, 317, 340.
#include "language/tokens/token.h"
#include "quoly/quoly.h"

#include <cstdio>
namespace tolvex {
/// The value of the expression at the current token.
int32_t old_iexpre(FILE* inf, nameptr* flag);
/// An expression or an assignment. False: it was an assignment, whose value 0 needs no record.
bool iexpre(FILE* inf, nameptr* flag, int32_t* value);
/// *n := the word as a value, in place if *n is a number.
void value_of_word(int32_t word, quolyptr n);
/// The word of a value: a number that fits 32 bits. False for everything else.
bool word_of_value(const quolynode* q, int32_t* word);
/// The variable takes the word; it is created if it has gone. `node` names it.
void write_word(nameptr node, int32_t word);
}  // namespace tolvex
