#pragma once
/// language/small_words.h: expressions of small integers, worked out ahead on a stored list.
///
/// Purpose    what programs compute most are sums, products and remainders of small integers: n - 1, k|2 = 0.
///            They are worked out on the nodes of the list, without a record or a copy of a token.
/// Invariant  nothing happens unless the whole expression is such a one: else the evaluator reads it from its
///            beginning, with whatever reports it has. Values are exact; what leaves 64 bits is left to it
///            too.
/// Modes      numbers that are chains; in lintmode nothing is worked out here.
/// Raises     nothing.
#include "language/tokens/token.h"
#include "quoly/quoly.h"
namespace tolvex {
/// *v := the value of the expression at the current token, which is then the one behind it. False: nothing
/// has been read. Cost: a few instructions a token, a search of the table for a name that is not bound.
bool small_expression(nameptr* flag, int64_t* v);
/// The same for a comparison of two of them: *truth.
bool small_comparison(nameptr* flag, bool* truth);
/// The orders of two numbers that make a comparison true.
enum Orders : uint32_t { k_below = 1, k_equal = 2, k_above = 4 };
/// The comparison sign at the node *at, which is passed over; 0: there is none.
uint32_t comparison_sign(nameptr* at);
inline bool order_holds(uint32_t orders, int64_t a, int64_t b) {
    return (orders & (a < b ? k_below : a == b ? k_equal : k_above)) != 0;
}
/// *n := the value, in place if *n is a number.
void value_of_long(int64_t v, quolyptr n);
}  // namespace tolvex
