#include "session/mod_out.h"

#include "field/aux_primes.h"
#include "field/field_modes.h"
#include "field/fold.h"
#include "field/irreducible.h"
#include "field/modding.h"
#include "field/tower_words.h"
#include "gcd/gcd_modes.h"
#include "gcd/gcd_stash.h"
#include "language/expre.h"
#include "language/language_modes.h"
#include "language/symbols.h"
#include "language/tokens/scanner.h"
#include "numbers/primes.h"
#include "numbers/ring_switch.h"
#include "poly/poly_basic.h"
#include "poly/poly_display.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "session/levels.h"
#include "session/loop.h"
#include "session/messages.h"
#include "session/modulus.h"
#include "session/questions.h"
#include "session/session_modes.h"
#include "storage/failure.h"
#include "storage/interrupt.h"
#include "storage/progress.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
// ---- reading -------------------------------------------------------------------------------------------

namespace {
/// The text of one command.
struct ModOutText {
    poly f;                 // nil after an error; at level 1, free of denominators, no number
    int32_t flag;           // the second value, 0 if there is none; -1: neither 0 nor 1
    int32_t primes, pairs;  // -1: no list
    int32_t* prime;         // scratch
    RootPrime* pair;        // scratch
};
constexpr int32_t k_most_pairs = 4583;
}  // namespace

/// Modding out needs level 1, no value half computed, and the user's own ring: while modular arithmetic is
/// suspended words are no values of it.
static bool may_mod_out() {
    if (!lintmode || modularmode) return ring_may_change();
    error(Err::ring_needed_plain);
    return false;
}

/// The modding polynomial as a value of free variables; nil after error 171, 199.
static poly read_polynomial(FILE* inf, nameptr* flag) {
    quoly value = nullptr;
    suspend_modding();
    old_expre(inf, &value, flag);
    resume_modding();
    poly f = nullptr;
    if (value == nullptr || value->numb || value->denom != nullptr || has_negative_exponent(value->numer)) {
        free_quoly(&value);
        error(Err::matrix_modulus_fraction);
        return nullptr;
    }
    quoly_consume(&value, &f);
    return f;
}

/// A number behind "," or ":", evaluated outside the ground ring.
static int32_t read_word(FILE* inf, nameptr* flag) {
    boolean modular;
    quoly value = nullptr;
    next_token(inf, flag);
    check_modular(&modular);
    old_expre(inf, &value, flag);
    int32_t word = value_as_word(value);
    free_quoly(&value);
    restore_modular(modular);
    return word;
}

static bool read_text(FILE* inf, nameptr* flag, bool at_question, ModOutText* text) {
    *text = {nullptr, 0, -1, -1, nullptr, nullptr};
    text->prime = scratch_array<int32_t>(k_first_aux_primes);
    text->pair = scratch_array<RootPrime>(k_most_pairs);
    text->f = read_polynomial(inf, flag);
    if (text->f == nullptr) return false;
    if (tok_is(token, ",")) {
        text->flag = read_word(inf, flag);
        if (text->flag != 0 && text->flag != 1) text->flag = -1;
    }
    while (tok_is(token, ",")) {
        if (text->primes < 0) text->primes = 0;
        int32_t p = read_word(inf, flag);
        if (text->primes < k_first_aux_primes) text->prime[text->primes++] = p;
    }
    if (!at_question && tok_is(token, ":") && text->primes >= 0) {
        text->pairs = 0;
        do {
            int32_t p = read_word(inf, flag), r = tok_is(token, ",") ? read_word(inf, flag) : -1;
            if (text->pairs < k_most_pairs) text->pair[text->pairs++] = {p, r};
        } while (tok_is(token, ","));
    }
    Err fault = Err{};
    if (at_question ? !at_terminator() : !tok_is(token, ")"))
        fault = at_question ? Err::mod_out_form : Err::switch_close_paren;
    else if (text->flag < 0 || (text->primes >= 0 && text->flag != 1))
        fault = Err::mod_out_form;
    if (fault == Err{}) return true;
    free_poly(&text->f);
    error(fault);
    return false;
}

// ---- tests ---------------------------------------------------------------------------------------------

/// *f, at level 1, becomes a polynomial of its own topmost level, coefficients reduced; returns the variable.
static polypt find_variable(polyptrr f) {
    polypt v = polynames;
    while ((*f)->exp == 0) {
        poly pad = *f;
        *f = pad->pcoef;
        free_node(pad);
        v = v->next;
    }
    if (v->next != nullptr && pseudo_polynames != nullptr) {
        reduce_coefficients(f, v->next);
        fix_top(f);
    }
    return v;
}

static bool is_bare_variable(const polynode* f) {
    return f->exp == 1 && f->next == nullptr && poly_eq_1(f->pcoef);
}

/// The error that forbids f as modding polynomial of v; Err{}: none. *field is cleared for what can be none.
static Err fault_of(const polynode* f, polypt v, bool field) {
    if (f->numb || !poly_eq_1(f->pcoef)) return Err::mod_out_not_monic;
    if (f->exp < 2) return Err::mod_out_degree;
    if (field_depth > 0 && v->depth > field_depth) return Err::field_cannot_grow;
    if (field && v->next != nullptr && !v->next->field) return Err::lower_not_field;
    if (!field && laurent) return Err::laurent_with_modding;
    return Err{};
}

/// t^n alone: a ring with zero divisors in every case.
static bool is_power(const polynode* f) { return f->next == nullptr; }

// ---- auxiliary primes ----------------------------------------------------------------------------------

/// The given primes that are primes, and modulo which f is irreducible.
static void take_first_primes(ModOutText& text, NewLevel level) {
    constexpr int32_t k_greatest = 65521;
    int32_t kept = 0;
    bool bad = false;
    for (int32_t i = 0; i < text.primes; i++) {
        int32_t p = text.prime[i];
        bool good = p >= 2 && p <= k_greatest && is_prime(p) && irreducible_modulo(level, p);
        if (good)
            text.prime[kept++] = p;
        else
            bad = true;
    }
    if (bad) printf(" *** You've messed up the first auxiliary prime list.\n");
    text.primes = kept;
}

/// The first list of the new tower in text.prime.
static void make_first_list(ModOutText& text, NewLevel level, bool grows) {
    constexpr int32_t k_few = 50;
    if (text.primes >= 0) {
        take_first_primes(text, level);
        return;
    }
    printf("  Computing and counting first auxiliary list.\n");
    PrimeList old = {aux_prime1_number, aux_prime1}, found = {0, text.prime};
    find_first_primes(level, grows && aux_prime1_number > 0 ? &old : nullptr, &found, true);
    text.primes = found.count;
    if (found.count >= k_few) return;
    printf(" *** Warning. Few auxiliary primes found.\n");
    printf("     Try restarting Tolvex, then use &X to increase the\n");
    printf("     first auxiliary search factor.  Current factor is %1d.\n", aux_num_1factor);
}

static void tell_second_list(int32_t count) {
    constexpr int32_t k_few = 5;
    printf(" Number of secondary auxiliary primes for gcd: %d\n", count);
    if (count >= k_few) return;
    printf(" *** Warning:  This is a small number.  Try restarting Tolvex,\n");
    printf("         then use &A to increase the search factor.  Current\n");
    printf("         search factor is %1d.\n", aux_num_2factor);
}

// ---- report --------------------------------------------------------------------------------------------

static void show_polynomial(const polynode* f, polypt v) {
    constexpr int64_t k_long = 200;
    int64_t terms = poly_terms(f);
    if (terms >= k_long) {
        printf(" a poly of %0lld terms.\n", static_cast<long long>(terms));
        return;
    }
    int32_t length = 0, lines = 0;
    putchar(' ');
    poly_display(Output, 1, f, &length, v, 1, 0, &lines);
    putchar('\n');
}

static void report(const ModOutText& text, polypt v, bool field) {
    constexpr int32_t k_a_line = 10;
    printf(" Now modding out polynomial variable %s, using \n", tok_text(v->let));
    show_polynomial(text.f, v);
    if (!field) return;
    printf("     This creates a field.\n");
    if (lintmode) return;
    if (text.primes == 0) {
        printf(" *** no auxiliary primes.  OK, but polygcd might run slowly.\n");
        return;
    }
    printf("     auxiliary primes (%1d):\n", text.primes);
    for (int32_t i = 0; i < text.primes; i++)
        printf(" %1d%s", text.prime[i], (i + 1) % k_a_line == 0 || i + 1 == text.primes ? "\n" : "");
}

static void tell_no_field() {
    printf(" *** Not a field. Be careful dividing! Some things will not work right.\n");
}

// ---- installing ----------------------------------------------------------------------------------------

namespace {
struct Conversion {
    bool told;  // a denominator has become 0
};
}  // namespace

static void convert_value(quolyptr value, void* context) {
    auto* c = static_cast<Conversion*>(context);
    if (quoly_mod_out(value) || c->told) return;
    c->told = true;
    out_err_mess(static_cast<int32_t>(Err::zero_denominator));
}

static void convert_all() {
    Conversion c = {false};
    printf(" Converting variables...\n");
    for_each_value(convert_value, &c);
    quoly_set(0, &prevnum);
}

/// The new polynomial and its lists take their places, and all values follow.
static void install(ModOutText& text, polypt v, bool field, const SecondLists* second) {
    interrupts_held++;
    gcd_stash_outdated();
    install_modding(v, &text.f, field);
    if (field && !lintmode) {
        memcpy(aux_prime1, text.prime, static_cast<size_t>(text.primes) * sizeof(int32_t));
        aux_prime1_number = text.primes;
        install_second_lists(*second);
    }
    convert_all();
    interrupts_held--;
}

/// A field: what is declared over Q is taken at its word; over a finite field it is decided.
static bool makes_field(const ModOutText& text, NewLevel level) {
    if (is_power(text.f)) return false;
    if (!lintmode) return true;
    return modularmode && (mod_is_prime || finf) &&
           tw_irreducible(candidate_words(text.f, level.below), level.below + 1);
}

static void mod_out(ModOutText& text, polypt v, bool loud) {
    const bool grows = v->p == nullptr;
    if (!grows) {
        printf(" *** Warning. Was already modding out on %s.\n", tok_text(v->let));
        printf("     Will discard former modding polynomial.\n");
    }
    NewLevel level = {text.f, number_polys - v->depth};
    SecondLists second = {};
    const bool wanted = text.flag == 1, field = wanted && makes_field(text, level);
    if (field && !lintmode) make_first_list(text, level, grows);
    if (loud) report(text, v, field);
    if (!field && (loud || wanted)) tell_no_field();
    if (field && !lintmode) {
        if (text.pairs >= 0) {
            second = take_gcd_lists(level, text.pair, text.pairs);
        } else {
            printf(" Computing secondary auxiliary primes for poly mod out...\n");
            second = make_and_reconcile_gcd_lists(level);
        }
        tell_second_list(second.count);
    }
    install(text, v, field, &second);
    if (lintmode) changed_in_modmode = 1;
    constexpr int32_t k_many = 3;
    if (field_depth > 0 && number_polys - field_depth > k_many)
        printf(" *** Warning. Many poly vars are in the field. Performance may slow, especially over Z.\n");
}

static void end_modding(polypt v) {
    if (v->p == nullptr) {
        printf(" *** Warning. Wasn't modding out on %s.\n", tok_text(v->let));
        return;
    }
    interrupts_held++;
    gcd_stash_outdated();
    remove_modding(v);
    quoly_set(0, &prevnum);
    interrupts_held--;
    printf(" No longer modding out polynomial variable %s.\n", tok_text(v->let));
    if (field_depth == 0) printf(" There are no fields.\n");
    if (lintmode) changed_in_modmode = pseudo_polynames != nullptr;
}

// ---- the commands --------------------------------------------------------------------------------------

static void run_text(FILE* inf, nameptr* flag, bool at_question) {
    const bool loud = verbose || (*flag == nullptr && tt_flag);
    ScratchMark mark = scratch_mark();
    ModOutText text;
    if (read_text(inf, flag, at_question, &text)) {
        polypt v = find_variable(&text.f);
        const bool field = text.flag == 1;
        Err fault = Err{};
        if (is_bare_variable(text.f) && !field) {
            end_modding(v);
        } else if ((fault = fault_of(text.f, v, field)) == Err{}) {
            mod_out(text, v, loud);
        }
        free_poly(&text.f);
        if (fault != Err{}) error(fault, tok_text(v->let));
    }
    scratch_release(mark);
}

void set_mod_out(FILE* inf, nameptr* flag) {
    if (may_mod_out()) run_text(inf, flag, false);
}

void ask_mod_out() {
    if (!may_mod_out()) return;
    printf("Changing polynomial mod out.\n");
    QuestionMark mark = open_question(" Enter polynomial:\n");
    nameptr stream = nullptr;
    run_text(Input, &stream, true);
    close_question(mark);
}

void test_fields() {
    polypt all[k_levels];
    int32_t count = 0;
    for (polypt v = polynames; v != nullptr; v = v->next) all[count++] = v;
    while (--count >= 0 && all[count]->field && all[count]->p != nullptr)
        if (!level_is_field(all[count])) tell_no_field();
}

static void follow_laurent_at(quolyptr value, void*) { quoly_follow_laurent(*value); }

void follow_laurent() {
    interrupts_held++;
    gcd_stash_outdated();
    for_each_value(follow_laurent_at, nullptr);
    interrupts_held--;
}

bool refuse_laurent(int32_t on) {
    if (!on) return false;
    for (polypt v = polynames; v != nullptr; v = v->next)
        if (v->p != nullptr && !v->field) {
            error(Err::laurent_with_modding, tok_text(v->let));
            return true;
        }
    return false;
}

// ---- saving and status ---------------------------------------------------------------------------------

/// The text of the modding polynomial, as it can be read back.
static void save_polynomial(FILE* file, const polydata* v) {
    poly f = nullptr;
    int32_t length = 0, lines = 0;
    whole_modding(v, &f);
    const boolean ugly = uglyprint;
    uglyprint = 1;
    poly_display(file, 0, f, &length, const_cast<polypt>(v), 0, 0, &lines);
    uglyprint = ugly;
    free_poly(&f);
}

static void save_lists(FILE* file, const polydata* v) {
    for (int32_t i = 0; i < aux_prime1_number; i++)
        fprintf(file, ",%s%d", i % 10 == 0 ? "\n " : " ", aux_prime1[i]);
    if (aux_prime1_number == 0) return;
    for (int32_t i = 0; i < v->aux_num; i++)
        fprintf(file, "%s%s%d, %d", i == 0 ? " :" : ",", i % 5 == 0 ? "\n " : " ", v->gcd_data[i].prime,
                v->gcd_data[i].root);
}

void save_mod_out(FILE* file) {
    polypt all[k_levels];
    int32_t count = 0;
    for (polypt v = polynames; v != nullptr; v = v->next) all[count++] = v;
    while (--count >= 0) {
        const polydata* v = all[count];
        if (v->p == nullptr) continue;
        fprintf(file, "&(P = ");
        save_polynomial(file, v);
        if (v->field) fprintf(file, ", 1");
        if (v->field && !lintmode) save_lists(file, v);
        fprintf(file, ");\n");
    }
}

void mod_out_status() {
    printf(" There are %d first auxiliary primes: \n", aux_prime1_number);
    for (int32_t i = 0; i < aux_prime1_number; i++) printf(" %0d", aux_prime1[i]);
    if (aux_prime1_number > 0) putchar('\n');
    const polydata* deepest = polynames;
    while (deepest != nullptr && deepest->next != nullptr) deepest = deepest->next;
    const int32_t second = deepest != nullptr ? deepest->aux_num : 0;
    if (second > 0)
        printf(" There are %d second auxiliary primes.\n", second);
    else
        printf(" There are no second auxiliary primes.\n");
}
}  // namespace tolvex
