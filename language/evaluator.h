#pragma once
/// language/evaluator.h: what the files of the evaluator share.
///
/// Purpose    the working form of a value under way: a private quoly, or the location of a variable's.
/// Invariant  a Value on the list of held operands is whole: statements and command levels may run.
#include "language/expre.h"
#include "language/language_modes.h"
#include "language/tokens/scanner.h"
#include "numbers/residue.h"
#include "quoly/quoly_basic.h"
#include "storage/failure.h"
namespace tolvex {
/// True if the current token is the single character c.
inline bool at_char(char c) { return token.name[0] == static_cast<unsigned char>(c) && token.name[1] == 0; }

/// eval_state.bar_closes: "|" closes; a line end in front of what could go on ends the expression.
inline constexpr boolean k_bar_closes = 1, k_line_closes = 2;
inline bool bar_closes_here() { return (eval_state.bar_closes & k_bar_closes) != 0; }
inline bool line_ends_here() { return line_crossed && (eval_state.bar_closes & k_line_closes) != 0; }

/// What reads a factor, by the first character of its token.
template <class Routine> struct FactorTable {
    struct Row {
        const char* characters;
        Routine routine;
    };
    Routine of[256] = {};
    template <int count> constexpr FactorTable(Routine otherwise, const Row (&rows)[count]) {
        for (auto& f : of) f = otherwise;
        for (const Row& row : rows)
            for (const char* c = row.characters; *c != 0; c++)
                of[static_cast<unsigned char>(*c)] = row.routine;
    }
};
inline constexpr char k_lower_letters[] = "abcdefghijklmnopqrstuvwxyz",
                      k_upper_letters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ", k_digits[] = "0123456789",
                      k_statement_signs[] = "!&?@";

/// Reads over the character c, or reports that it is missing and goes on as if it were there.
bool expect(FILE* inf, nameptr* flag, char c, Err missing);

/// One operand: `at` is &own, or the location of a value that somebody else owns.
struct Value {
    held_operand hold;
    quoly own;
};
/// An operand read by fact(); 0 if it has no value. The caller ends with release().
void read_factor(FILE* inf, Value* v, nameptr* flag);
/// The same by an expression in parentheses, brackets or commas: a plain "|" is the remainder sign in it.
void read_expression(FILE* inf, Value* v, nameptr* flag);
inline quoly value_of(const Value* v) { return *v->hold.at; }
inline bool is_private(const Value* v) { return v->hold.at == v->hold.own; }
/// Lets statements run: v is inherited if its variable is changed (language/language_modes.h).
inline void hold(Value* v) {
    v->hold.below = eval_state.held;
    eval_state.held = &v->hold;
}
inline void let_go(Value* v) { eval_state.held = v->hold.below; }
inline void release(Value* v) { free_quoly(&v->own); }
/// *n := a copy of the value at `at`, made with safe points: what a command level replaces is inherited.
[[gnu::noinline]] void copy_value(quolyptr at, quolyptr n);
/// *n := the value, moved if it is private, copied otherwise. v is released.
void take_value(Value* v, quolyptr n);

/// q, whose numerator or denominator has been changed, becomes a plain number if it is one.
inline void settle(quoly q) {
    if (q->denom == nullptr && is_number(q->numer)) polynum_to_quoly(q);
}
/// n := 0, whatever it was.
inline void set_zero(quolyptr n) {
    free_quoly(n);
    quoly_set(0, n);
}
/// *n, which is nil, := a word of at most 28 bits.
inline void word_value(int32_t word, quolyptr n) {
    init_quoly_node(n);
    if (modularmode)
        (*n)->ncoef->lint = residue_of_int(word);
    else if (lintmode)
        (*n)->ncoef->lint = word;
    else
        num_make_digit((*n)->ncoef, word);
}
/// The word that q has where modular arithmetic is suspended, if a loop has written another than its residue.
/// 0: the residue counts.
inline int32_t loop_word(const quolynode* q) {
    if (modularmode || q == nullptr || !q->numb || q->word == 0 || !lintmode) return 0;
    return residue_of_int(q->word) == q->ncoef->lint ? q->word : 0;
}
/// Words of n that were computed with modular arithmetic suspended become residues.
void reduce_words(quolyptr n);
/// A factor read with modular arithmetic suspended; it must be a number (else `code`, then 0). Its word is
/// returned, INT32_MAX or k_no_word by its sign if it has none.
int32_t read_plain_word(FILE* inf, nameptr* flag, Err code, bool whole_expression);

/// A factor that leaves the postfix signs behind it to what stands in front: 2^3^2 has no meaning, Sqrt(9)^2
/// is the square of a root.
void read_bare_factor(FILE* inf, Value* v, nameptr* flag);
/// What a factor may begin with: *qp := the location or n. True if postfix signs may follow, false after a
/// prefix sign, whose own factor has taken them.
bool primary(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag);
/// "^", "!", "#", then any number of derivative signs.
void postfix(FILE* inf, quolyptr* qp, quolyptr n, nameptr* flag);
/// Runs the built-in function whose name is the current token; false if there is none of that name.
bool builtin_function(FILE* inf, quolyptr n, nameptr* flag);
}  // namespace tolvex
