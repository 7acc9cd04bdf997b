#pragma once
/// gcd/polygcd_env.h: the record that the steps of polygcd share. Private to gcd/.
///
/// Each step is a function of this record; it returns true when it has ended the call, the result standing in
/// *r.
///
/// Invariant  an operand whose save flag is true is never written to: what a step changes is a private form
///            of it, so that errors and interrupts find the caller's operands as they came.
#include "gcd/gcd_modes.h"
#include "poly/poly.h"
namespace tolvex {
/// What belongs to one operand.
struct GcdOperand {
    poly orig;          // as the caller gave it
    boolean save;       // true: the caller's, only read. False: may be used up
    boolean own;        // u (v) is a private form, given back at the end
    boolean shell;      // the private form is a chain of its own over coefficients that belong to orig
    int32_t lowest;     // exponent removed from every term (uexp, vexp)
    int16_t levels;     // levels below the main variable, -1: not known (ulevel, vlevel)
    int16_t in_field;   // the same counted from the main variable as 1, clipped above the field
    boolean has_terms;  // more than one term: lowest exponents and gaps mean something
};
struct polygcd_EnvRec {
    // arguments
    poly u, v;   // current operands
    polyptrr r;  // result, nil on entry
    polypt pt;   // main variable
    boolean leave_early, do_fast, allcons, canreset;
    GcdOperand us, vs;
    // what has been stripped and must be put back: d, d2, gcdexp, comm, in this order
    poly d;          // gcd of the contents in the main variable, one level below it; nil: 1
    poly d2;         // product of the gcds of contents in further levels; nil: 1
    int32_t gcdexp;  // gcd of all exponent gaps; exponents are divided by it (modular mode)
    int32_t comm;    // exponent of the common power of the main variable
    // the stash
    poly gcdp;  // slot found by gcdhash
    boolean store_new_gcd;
    // levels
    int16_t field_level;  // levels in play, the main variable counted, clipped above the field
    int16_t level;        // number of levels in play
    // strategy
    int16_t height;  // number of evaluation tests; later the step count of Algorithm C
    int32_t delta;   // expected degree of the gcd in the main variable
    int32_t expo;    // degree of the best image gcd, exp of v before there is one
    int64_t uvsize, ssize, tsize, avsize;
    boolean modular_ok;  // images allowed
    boolean usparse, balanced, tried_use_modular, found_something;
};

// ---- the steps, in the order in which polygcd takes them; true: the call has ended ----
using GcdStep = bool(polygcd_EnvRec& env);
// polygcd.cpp
GcdStep one_is_number, field_units, tower_operands, same_operands, not_a_domain, both_free_of_main, word_lane,
    one_variable, one_free_of_main, reset_counters, strip_powers, divide_exponents, larger_degree_first;
// polygcd_images.cpp
GcdStep allow_images, try_small_divisor, adjust_allcons, one_image, assign_levels, first_evaluation_tests,
    missing_variables;
// polygcd_contents.cpp
GcdStep main_contents, one_term_or_equal, contents_in_levels;
// polygcd_strategy.cpp
GcdStep sparse_or_dense, budget_of_algorithm_c, number_of_tests;
// polygcd_engines.cpp
GcdStep try_divisor_early, multi_prime_first, second_evaluation_tests, early_degree, stash_lookup,
    try_over_integers, try_modular, remainder_sequence;

/// How often each step, in the order above, has ended a call since the process began: what a choice of bounds
/// leads to.
inline constexpr int32_t k_gcd_steps = 35;
inline int64_t gcd_ended_by[k_gcd_steps] = {};
const char* gcd_step_name(int32_t step);

/// What may go wrong at any call outside of sure mode: nil, or the test's routine that spoils a result as an
/// unlucky point does (a multiple of the gcd) and sets gcd_unproved.
inline void (*gcd_fault)(polyptrr g, polypt pt) = nullptr;

// ---- what the steps share ----
/// The whole call on fresh operands, one frame deeper.
void gcd_call(poly u, poly v, polyptrr r, boolean leave_early, boolean do_fast, boolean allcons, polypt pt,
              boolean usave, boolean vsave, boolean canreset);
/// True in the outermost frame: the only one whose contents show their progress.
inline boolean is_outermost() { return gcd_nesting == gcd_outer + 1; }
/// One evaluation of all levels below the main variable. True: the degree of the gcd in the main variable is
/// 0, which is proved. *valid: the point kept both degrees; then *expo is the degree of the image gcd.
bool fast_test_2(int16_t i, int32_t* expo, bool* valid, polygcd_EnvRec& env);
/// Shall basic_mod_method be tried?
bool do_mod_method_now(poly u, poly v, int32_t expo);
/// *p := *p without its content in pt, which goes to *c. A content that does not divide rests on a nested gcd
/// that was wrong: then it is computed again, relying on nothing.
void take_out_content(polyptrr p, polyptrr c, polypt pt, boolean allcons);
// polygcd_finish.cpp
void own_chain(poly* p, GcdOperand& side);  ///< from here on the top chain of *p may be changed
void own_tree(poly* p, GcdOperand& side);   ///< ... all of it
void replace_operand(poly* p, GcdOperand& side, poly fresh);  ///< fresh takes the place of *p
/// True if the coefficients of an operand belong to the caller for good.
inline boolean keeps_tree(const GcdOperand& side) { return side.own ? side.shell : side.save; }
void check_uv(polygcd_EnvRec& env);  ///< gives back the private forms
void exchange_operands(polygcd_EnvRec& env);
bool finish_4(polygcd_EnvRec& env);  ///< puts back on *r what was stripped; true
/// *r := x^e of the main variable, and finish_4.
bool finish_power(polygcd_EnvRec& env, int32_t e);
/// *r := the stripped gcd g, used up, and finish_4.
bool alternate_finish(polygcd_EnvRec& env, poly g);
void correct_monic_form(polyptrr r);
/// The result of a call that asks for the degree alone.
void early_form(polyptrr r);
/// Exponent of the main variable that a one-term operand shares with the other one; 0 if neither is one term.
int32_t monomial_factor(const polygcd_EnvRec& env);
poly poly_power_of_main(int32_t e);  ///< x^e, or the number 1
/// True if g divides u and v, by dividing.
bool divides_both_exactly(poly u, poly v, poly g, polypt pt);
/// The attempt that relies on nothing unproved.
inline constexpr int k_sure_attempt = 3;
}  // namespace tolvex
