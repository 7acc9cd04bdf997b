#pragma once
/// language/integer_words.h: what the files of the integer evaluator share.
///
/// Invariant  `at` is the node of the current token. The global token and the caller's cursor follow only
///            where somebody else looks at them: give_back before a routine of the general evaluator, an
///            error or the end, take_up after it.
#include "language/compile.h"
#include "language/evaluator.h"
#include "language/integer_eval.h"
namespace tolvex {
struct WordReader {
    nameptr at;
    FILE* inf;
    nameptr* flag;
};

inline unsigned char word_char(const WordReader& r) { return tok_char(r.at->let); }
/// True if the current token is the single character c.
inline bool word_at(const WordReader& r, char c) {
    return r.at->let.name[0] == static_cast<unsigned char>(c) && r.at->let.name[1] == 0;
}
/// On to the next token; the end mark is given again and again.
inline void word_step(WordReader& r) {
    if (r.at->next != nullptr) r.at = r.at->next;
}
inline void give_back(const WordReader& r) {
    *r.flag = r.at;
    token = r.at->let;
    currentchar = r.at->next;
}
inline void take_up(WordReader& r) { r.at = *r.flag; }
/// Reports an error at the current token.
inline void word_error(const WordReader& r, Err code) {
    give_back(r);
    error(code);
}
/// Reads over the character c, or reports that it is missing and goes on as if it were there.
inline bool word_expect(WordReader& r, char c, Err missing) {
    if (word_at(r, c)) {
        word_step(r);
        return true;
    }
    word_error(r, missing);
    return false;
}

/// A factor with its postfix. False: the token begins none.
bool word_factor(WordReader& r, int32_t* value);
/// A factor without postfix.
bool word_primary(WordReader& r, int32_t* value);
/// A factor that must be there: else error 68, and 0.
int32_t word_operand(WordReader& r);
/// An expression without assignment; 0 and the error if there is none.
int32_t word_expression(WordReader& r, Err missing = Err::not_terminated);

inline int32_t wrapped(int64_t v) { return static_cast<int32_t>(static_cast<uint32_t>(v)); }
inline int32_t word_sum(int32_t a, int32_t b) {
    return modularmode ? mod_add(a, b, modulus) : wrapped(int64_t{a} + b);
}
inline int32_t word_difference(int32_t a, int32_t b) {
    return modularmode ? mod_sub(a, b, modulus) : wrapped(int64_t{a} - b);
}
inline int32_t word_product(int32_t a, int32_t b) {
    return modularmode ? modmult(static_cast<uint32_t>(a), static_cast<uint32_t>(b))
                       : wrapped(int64_t{a} * b);
}
inline int32_t word_negative(int32_t a) { return modularmode ? mod_neg(a) : wrapped(-int64_t{a}); }
}  // namespace tolvex
