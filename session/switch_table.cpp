#include "session/switch_table.h"

#include "field/field_modes.h"
#include "gcd/gcd_modes.h"
#include "gcd/gcd_stash.h"
#include "language/language_modes.h"
#include "language/tokens/scanner.h"
#include "matrix/matrix_modes.h"
#include "numbers/display_modes.h"
#include "numbers/number_modes.h"
#include "poly/poly_modes.h"
#include "poly/poly_vars.h"
#include "session/mod_out.h"
#include "session/session_modes.h"
#include "storage/checked.h"
#include "storage/interrupt.h"
#include "storage/memory.h"
#include "storage/progress.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
namespace tolvex {
// ---- what follows a change -----------------------------------------------------------------------------

static void set_continuation() { continuation = uglyprint ? ' ' : '`'; }
static void set_rat_yes() { rat_yes = try_rat; }

// ---- numeric switches: test, store, report -------------------------------------------------------------

/// True if least <= value <= greatest; otherwise raises `code`.
static bool in_range(int32_t value, int32_t least, int32_t greatest, Err code) {
    if (value >= least && value <= greatest) return true;
    error(code);
    return false;
}

/// " ... is now" on a line, the value on the next.
static void report_value(const SwitchStore& s, const char* text) {
    if (s.loud) printf("%s\n %d\n", text, s.value);
}

static bool store_poly_cutoff(SwitchStore& s) {
    constexpr int32_t k_least = 6;
    if (s.value < k_least) {
        s.value = k_least;
        if (s.loud)
            printf(s.asked ? " *** smallest legal value is 6. will use 6.\n"
                           : " Value entered is too small; will use 6.\n");
    }
    reset_cutoffs(s.value);  // compares with the value before
    poly_cutoff = s.value;
    if (s.loud) printf(s.asked ? " poly_cutoff: %1d\n" : " poly_cutoff now %1d.\n", poly_cutoff);
    return true;
}

static bool store_factor_1(SwitchStore& s) {
    if (!in_range(s.value, 300, 4583, Err::first_factor_range)) return false;
    aux_num_1factor = s.value;
    if (s.loud)
        printf(s.asked ? " first auxiliary prime search factor: %1d\n"
                       : " first auxiliary prime search factor now %1d.\n",
               s.value);
    return true;
}

static bool store_factor_2(SwitchStore& s) {
    if (!in_range(s.value, 10, 20000, Err::poly_cutoff_value)) return false;
    s.left = s.value;
    aux_num_2factor = s.value;
    if (s.loud)
        printf(s.asked ? " second auxiliary prime search factor: %1d\n"
                       : " second auxiliary prime search factor now %1d.\n",
               s.value);
    return true;
}

static bool store_detcutoff(SwitchStore& s) {
    constexpr int32_t k_ordinary = 40;  // most rows that an ordinary array can be told
    s.left = s.value;
    detcutoff = s.value == 1 ? 0 : s.value;
    if (!s.loud) return true;
    if (detcutoff < 0) {
        printf(" Will set detcutoff using defaults.\n");
    } else {
        printf(" Detcutoff now %1d.\n", detcutoff);
    }
    if (detcutoff > k_ordinary)
        printf(" Note: This value for sparse arrays only. For ordinary arrays, max value is %d.\n",
               k_ordinary);
    return true;
}

static bool store_gauss_cutoff(SwitchStore& s) {
    gauss_cutoff = s.value;
    if (!s.loud) return true;
    if (s.asked) {
        printf(" Gauss-Bareiss: %1d means%s", s.value,
               s.value == 1 ? " will try Gauss-Bareiss.\n" : " will not use Gauss-Bareiss.\n");
    } else {
        printf(" Gauss-Bareiss switch: %1d\n", s.value);
    }
    return true;
}

static bool store_lagrange_cut(SwitchStore& s) {
    constexpr int32_t k_modular_share = 33;
    rat_det_method_cut = s.value < 0 ? INT32_MAX : s.value;
    mod_det_method_cut = rat_det_method_cut / k_modular_share;
    if (s.loud) printf(" LaGrange cut off \"mass\": %1d\n", rat_det_method_cut);
    return true;
}

static bool store_addresser(SwitchStore& s) {
    if (!s.asked && s.value == addresser) {
        if (s.loud) printf(" Already had that value; no change in error pushing.\n");
        return true;
    }
    if (s.asked) s.value = static_cast<int32_t>(std::min(1 - int64_t{addresser}, int64_t{INT32_MAX}));
    addresser = s.left = s.value;
    if (s.loud)
        printf(s.asked ? " Array initial index now %1d.\n" : " Array initial index now %1d\n", addresser);
    return true;
}

static bool store_interrupt_level(SwitchStore& s) {
    if (!in_range(s.value, 0, 2, Err::interrupt_level)) return false;
    s.left = s.value;
    if (!s.asked && s.value == m_interrupt) {
        if (s.loud) printf(" Already had that value; no change in command interrupt.\n");
        return true;
    }
    m_interrupt = s.value;
    command_int = s.value > 0;
    if (s.value > 0) cmd_modder = s.value == 1 ? 32 : 2;
    if (!s.loud) return true;
    if (s.value == 0) {
        printf(" Command interrupt now off.\n");
    } else {
        printf(" Command interrupt now on, level %1d.\n", s.value);
    }
    return true;
}

static bool store_pivot_heuristic(SwitchStore& s) {
    if (s.value < 0 || s.value > 5) {
        s.value = 0;
        if (s.loud)
            printf(s.asked ? " Value entered is too large or small; will use 0.\n"
                           : " Value entered is too large; will use 0.\n");
    }
    pseudet_heur = s.left = s.value;
    if (s.loud) printf(" Sparse pivot heuristic now %1d.\n", pseudet_heur);
    return true;
}

static bool store_columns(SwitchStore& s) {
    if (!in_range(s.value, INT16_MIN, INT16_MAX, Err::poly_cutoff_value)) return false;
    dispcutoff = static_cast<int16_t>(s.value);
    report_value(s, s.asked ? " Number of columns to display is now: " : " Columns to display is now: ");
    return true;
}

static bool store_karatsuba_cutoff(SwitchStore& s) {
    simplest_poly_cutoff = s.value;
    report_value(s, " Karatsuba cutoff is now: ");
    return true;
}

static bool store_rand_denom(SwitchStore& s) {
    if (!in_range(s.value, 1, INT32_MAX, Err::columns_not_number)) return false;
    rand_denom_n = s.left = s.value;
    report_value(s, " Denominator for random is now: ");
    return true;
}

// ---- lines of the status display that are no plain text ------------------------------------------------

static void show_lagrange_stash() {
    if (!lagrange_stash) return;
    printf(" Writing LaGrange determ. coefficients to file is on.\n");
    if (!verbose || !windy) printf("    But verbose and windy must be turned on too.\n");
}

static void show_interrupt_level() {
    if (m_interrupt == 0) {
        printf(" Command interrupt is off.\n");
    } else {
        printf(" Command interrupt is on, level %d.\n", m_interrupt);
    }
}

static void show_stashing() {
    printf(" GCD stashing level is %d, so it's %s. table mass: %lli\n", lookupgcd,
           lookupgcd > 0 ? "on" : "off", static_cast<long long>(gcdmass));
}

// ---- the table -----------------------------------------------------------------------------------------

// Rows name only the fields that they need; all others are empty.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
static const SwitchRow rows[] = {
    {.letter = "&",
     .at = &diskstore,
     .on = " Will use disk space for virtual memory.\n",
     .off = " No disk space for virtual memory.\n",
     .set_on = " Will use disk space as virtual memory.\n",
     .set_off = " No disk space as virtual memory.\n",
     .unchanged = "using disk space for virtual memory",
     .meaning = "a disk file may serve as virtual memory (a recorded preference)",
     .save = SavePlace::disk},
    {.letter = "_l",
     .also = "2",
     .set_letter = "2",
     .at = &monomial_list,
     .on = " Will display polynomials as list of monomials.\n",
     .off = " Will display polynomials in nested form.\n",
     .unchanged = "monomial display of polynomials",
     .quiet_stored = true,
     .meaning = "polynomials are displayed as lists of monomials",
     .save = SavePlace::monomials},
    {.letter = "_L",
     .also = "5",
     .set_letter = "7",
     .at = &lagrange_stash,
     .on = " Will stash coefficents in LaGrange Det computation -- if you have specified a save file.\n",
     .off = " Will not stash coefficents in LaGrange Det computation.\n",
     .set_on = " Will write LaGrange determinants to file.\n",
     .set_off = " No writing LaGrange determinants to file.\n",
     .unchanged = "writing LaGrange determinants to file",
     .quiet_stored = true,
     .meaning = "determinants by interpolation write their coefficients to the save file",
     .line = StatusLine::lagrange,
     .show = show_lagrange_stash,
     .save = SavePlace::lagrange_file},
    {.letter = "_s",
     .set_letter = "6",
     .at = &do_line_sup,
     .start = 1,
     .on = " Will suppress output to terminal of long polys.\n",
     .off = " No suppression of output to terminal of long polys.\n",
     .unchanged = "suppressing output of int32_t polys",
     .meaning = "long polynomials are cut short on the terminal",
     .save = SavePlace::line_suppression},
    {.letter = "_t",
     .set_letter = "5",
     .at = &try_rat,
     .start = 1,
     .on = " Will try fastest probabilistic test for exact poly division.\n",
     .off = " No fastest probabilistic test for exact poly division.\n",
     .unchanged = "fastest probabilistic test for exact poly division",
     .after = set_rat_yes,
     .meaning = "exact division of polynomials first tries the fastest probabilistic test",
     .save = SavePlace::fast_test},
    {.letter = "B",
     .at = &chpoly_block,
     .start = 1,
     .on = " Chpoly will be slowed in modularmode.\n",
     .off = " Will optimize Chpoly in modularmode.\n",
     .unchanged = "Chpoly speed",
     .rational_only = true,
     .meaning = "characteristic polynomials in modular mode take the slow way; not to be set in modular mode",
     .line = StatusLine::chpoly,
     .shown = " Block on Chpoly is %s.\n",
     .save = SavePlace::chpoly},
    {.letter = "E",
     .at = &extra_line,
     .start = 1,
     .on = " Will do extra line after display.\n",
     .off = " No extra line after display.\n",
     .unchanged = "extra line display",
     .meaning = "an empty line after a display",
     .save = SavePlace::line_after},
    {.letter = "H",
     .at = &alt_form_display,
     .start = 1,
     .on = " Will display modular values using -m, -m+1, ..., 0, 1, ..., n.\n"
           "    where m = (modulus - 1) div 2 and n = modulus div 2.\n",
     .off = " Will display modular values using 0, 1, ..., modulus - 1.\n",
     .set_on = " Will display modular values using -m, -m+1, ..., 0, 1, ..., n\n"
               "    where m = (modulus - 1) div 2 and n = modulus div 2.\n",
     .unchanged = "modular integers display",
     .quiet_stored = true,
     .meaning = "residues are displayed symmetric to 0",
     .save = SavePlace::residues,
     .reset_by_modulus = true},
    {.letter = "I",
     .at = &mod_matrix_ok,
     .start = 1,
     .on = " Will try adjoint-CRT method to invert integer matrix.\n",
     .off = " No adjoint-CRT method to invert integer matrices; will use G.E.\n",
     .meaning = "integer matrices are inverted by adjoint and remainders"},
    {.letter = "N",
     .at = &noisy,
     .start = 1,
     .on = " Will display results.\n",
     .off = " Displaying results is deactivated.\n",
     .unchanged = "noise",
     .meaning = "results are displayed",
     .line = StatusLine::results,
     .shown = " Displaying results is %s.\n",
     .save = SavePlace::results},
    {.letter = "O",
     .at = &chinhensel,
     .start = 1,
     .on = " Will use Hensel and CRT for multivariate GCD.  This is the default.\n",
     .off = " Use no Hensel or CRT for GCD. This is recommended only over Z/p for small primes.\n",
     .unchanged = "using Hensel or CRT",
     .quiet_stored = true,
     .meaning = "gcds of several variables use lifting and remainders",
     .save = SavePlace::lifting},
    {.letter = "U",
     .at = &uglyprint,
     .on = " Will do ugly display style.\n WARNING. Func, for, if, and while from terminal don't work when "
           "uglyprint "
           "is on.",
     .off = " Will resume lovely Tolvex style.\n",
     .unchanged = "uglyprint",
     .after = set_continuation,
     .meaning = "display in a compact form that any reader takes",
     .line = StatusLine::ugly,
     .shown = " Ugly printing is on.\n",
     .save = SavePlace::ugly},
    {.letter = "V",
     .at = &verbose,
     .on = " Will display informative comments.\n",
     .off = " Informative comments supressed.\n",
     .set_on = " Will do verbose display.\n",
     .set_off = " No verbose display.\n",
     .unchanged = "verbose",
     .meaning = "informative comments",
     .line = StatusLine::comments,
     .shown = " Verbose display is on.\n",
     .save = SavePlace::comments},
    {.letter = "W",
     .at = &windy,
     .on = " Extra verbosity turned on.\n",
     .off = " Extra verbosity turned off.\n",
     .set_on = " Will do extra verbose display.\n",
     .set_off = " No extra verbose display.\n",
     .unchanged = "extra verbose (windy)",
     .meaning = "more comments",
     .line = StatusLine::more_comments,
     .shown = " Extra verbose display is on.\n",
     .save = SavePlace::more_comments},
    {.letter = "Z",
     .at = &danger_ok,
     .on = " O.K. to interrupt anytime. This might be dangerous.\n",
     .off = " Can't interrupt at dangerous times.\n",
     .meaning = "interrupts are taken anywhere",
     .line = StatusLine::danger,
     .shown = " *** Can interrupt anytime! This is a bit dangerous.\n"},
    {.letter = "b",
     .at = &close_inpuf,
     .on = " Will close input file if error occurs while loading.\n",
     .off = " Will not immediately close input file if error occurs while loading.\n",
     .meaning = "an error in a loaded file closes it"},
    {.letter = "c",
     .at = &hen_check,
     .start = 1,
     .on = " will double check hensel gcd answers.\n",
     .off = " will single check hensel gcd answers.\n",
     .quiet_stored = true,
     .meaning = "lifted gcds are checked twice",
     .line = StatusLine::hensel,
     .shown = " Hensel gcd double checking is %s.\n"},
    {.letter = "e",
     .at = &errorpush,
     .on = " Will push new level after errors.\n",
     .off = " Pushing after errors is deactivated.\n",
     .set_off = " Pushing after errors is deactivated\n",
     .unchanged = "",
     .quiet_stored = true,
     .meaning = "an error opens a new command level",
     .line = StatusLine::error_levels,
     .shown = " Pushing after errors is %s.\n",
     .save = SavePlace::error_levels},
    {.letter = "l",
     .at = &laurent,
     .on = " Negative exponents enabled.\n",
     .off = " Negative exponents disabled.\n",
     .unchanged = "Laurent polynomial status",
     .after = follow_laurent,
     .refuses = refuse_laurent,
     .meaning = "polynomials may have negative exponents",
     .line = StatusLine::exponents,
     .shown = " Laurent polynomials allowed.\n",
     .save = SavePlace::exponents},
    {.letter = "n",
     .at = &nomodpolyreadin,
     .on = " Will not mod out integers during poly-readin over modular ground ring.\n",
     .off = " Will mod out integers during poly-readin over modular ground ring.\n",
     .unchanged = "poly-readin of negatives",
     .wide = true,
     .leaves_value = true,
     .meaning = "integers in polynomials that are read are not reduced; every value above 0 switches on"},
    {.letter = "t",
     .at = &timerflag,
     .on = " Timing enabled.\n",
     .off = " Timing disabled.\n",
     .unchanged = "timing",
     .meaning = "a time line after every statement",
     .line = StatusLine::timing,
     .shown = " Timing is enabled.\n",
     .save = SavePlace::timing},
    {.letter = "|",
     .at = &pos_mod,
     .start = 1,
     .on = " modding must return non-negatives.\n",
     .off = " modding can return negatives.\n",
     .set_on = " Modulus must return non-negatives.\n",
     .set_off = " Modulus can return negatives.\n",
     .unchanged = "| returning negatives",
     .quiet_stored = true,
     .meaning = "remainders are not negative",
     .save = SavePlace::remainders},

    {.letter = "#",
     .start = 80,
     .question = " Enter poly_cutoff (usually 10-60):\n",
     .not_number = Err::poly_cutoff_value,
     .set_not_number = Err::switch_not_number,
     .store = store_poly_cutoff,
     .wide = true,
     .value = [] { return poly_cutoff; },
     .meaning =
         "length of polynomials from which the faster products are used; back to 80 at a change of ring",
     .values = "from 6 on; what is smaller counts as 6",
     .save = SavePlace::product_cutoff,
     .reset_by_modulus = true},
    {.letter = "A",
     .start = 100,
     .question = " Enter second auxiliary prime search factor:\n",
     .not_number = Err::poly_cutoff_value,
     .set_not_number = Err::switch_not_number,
     .store = store_factor_2,
     .wide = true,
     .value = [] { return aux_num_2factor; },
     .meaning = "search for second auxiliary primes",
     .values = "10 to 20000",
     .save = SavePlace::second_factor},
    {.letter = "D",
     .start = -1,
     .question = " Enter detcutoff:\n",
     .not_number = Err::detcutoff_value,
     .set_not_number = Err::switch_not_number,
     .store = store_detcutoff,
     .wide = true,
     .value = [] { return detcutoff; },
     .meaning = "rows from which determinants are finished by minors",
     .values = "negative: defaults; 1 counts as 0",
     .line = StatusLine::det_rows,
     .shown = " Detcutoff is %1d.\n",
     .save = SavePlace::det_rows},
    {.letter = "K",
     .question = " Enter Gauss-Bareiss switch:\n",
     .not_number = Err::number_expected,
     .set_not_number = Err::switch_not_number,
     .store = store_gauss_cutoff,
     .value = [] { return gauss_cutoff; },
     .meaning = "determinants by fraction-free elimination",
     .values = "1: yes; anything else: no; `&(K = v)` takes 0 and 1",
     .save = SavePlace::gauss},
    {.letter = "L",
     .start = 5000,
     .question = " Enter LaGrange cut off:\n",
     .not_number = Err::number_expected,
     .set_not_number = Err::switch_not_number,
     .store = store_lagrange_cut,
     .wide = true,
     .value = [] { return rat_det_method_cut; },
     .meaning = "\"mass\" up to which determinants are interpolated; a 33rd of it in modular mode",
     .values = "`&L` takes a negative value for no limit",
     .save = SavePlace::lagrange_cut},
    {.letter = "X",
     .start = 400,
     .question = " Enter first auxiliary prime search factor:\n",
     .not_number = Err::first_factor_range,
     .set_not_number = Err::switch_not_number,
     .store = store_factor_1,
     .wide = true,
     .value = [] { return aux_num_1factor; },
     .meaning = "search for first auxiliary primes",
     .values = "300 to 4583",
     .save = SavePlace::first_factor},
    {.letter = "a",  // `&a` is a toggle: it asks nothing
     .start = 1,
     .set_not_number = Err::switch_not_number,
     .store = store_addresser,
     .wide = true,
     .value = [] { return addresser; },
     .meaning = "subscript of the first element of an array; `&a` asks nothing and goes from a to 1 - a",
     .values = "any",
     .line = StatusLine::origin,
     .shown = " Array initial index is %d.\n",
     .save = SavePlace::origin,
     .save_always = true},
    {.letter = "m",
     .start = 1,
     .question = " Enter command interrupt level:\n",
     .not_number = Err::interrupt_level,
     .set_not_number = Err::switch_not_number,
     .store = store_interrupt_level,
     .wide = true,
     .value = [] { return m_interrupt; },
     .meaning = "how readily an interrupt opens a command level",
     .values = "0: off, 1, 2",
     .line = StatusLine::interrupt,
     .show = show_interrupt_level,
     .save = SavePlace::interrupt,
     .save_always = true},
    {.letter = "u",
     .question = " Enter Sparse pivot heuristic:\n",
     .not_number = Err::number_expected,
     .set_not_number = Err::switch_not_number,
     .store = store_pivot_heuristic,
     .wide = true,
     .value = [] { return pseudet_heur; },
     .meaning = "pivot heuristic of sparse elimination",
     .values = "0 to 5; anything else counts as 0",
     .line = StatusLine::pivot,
     .shown = " Sparse pivot heuristic is %d.\n",
     .save = SavePlace::pivot,
     .save_always = true},
    {.letter = "_d",
     .set_letter = "4",
     .start = 76,
     .question = " Enter number of columns to display:\n",
     .not_number = Err::columns_not_number,
     .set_not_number = Err::switch_not_number,
     .store = store_columns,
     .wide = true,
     .value = [] { return static_cast<int32_t>(dispcutoff); },
     .meaning = "columns of a displayed line",
     .values = "up to 32767",
     .save = SavePlace::columns},
    {.letter = "_k",  // has no form `&(x = v)`
     .start = 140,
     .question = " Enter Karatsuba cutoff:\n",
     .not_number = Err::columns_not_number,
     .store = store_karatsuba_cutoff,
     .value = [] { return simplest_poly_cutoff; },
     .meaning = "cutoff of Karatsuba products of polynomials",
     .values = "any",
     .line = StatusLine::karatsuba,
     .shown = " Kartasuba cutoff for poly multiplication is %1d.\n"},
    {.letter = "_r",
     .set_letter = "3",
     .start = 1,
     .question = " Enter new denominator for random:\n",
     .not_number = Err::columns_not_number,
     .set_not_number = Err::columns_not_number,
     .store = store_rand_denom,
     .wide = true,
     .value = [] { return rand_denom_n; },
     .meaning = "denominator of random rational numbers; back to 1 at a change of ring",
     .values = "from 1 on",
     .line = StatusLine::random,
     .shown = " Denominator for random is:\n %d\n",
     .save = SavePlace::random,
     .reset_by_modulus = true},

    // Counters and settings whose commands do more than a row can say (session/commands.cpp).
    {.letter = "C",
     .value = [] { return static_cast<int32_t>(lookupgcd); },
     .meaning = "stack of gcd stashing, on above 0: `&C+` raises it, `&C-` lowers it",
     .values = "any",
     .line = StatusLine::stashing,
     .show = show_stashing},
    {.letter = "d",
     .start = 5,
     .value = [] { return disp_size; },
     .meaning =
         "groups of 8 digits of a decimal value; 4 after a change to the integers, 16 after one to a modulus",
     .values = "from 0 on; a negative value counts as 0",
     .line = StatusLine::decimals,
     .shown = " Display constant is %1d.\n"},
};
#pragma GCC diagnostic pop

static bool same(const char* a, const char* b) { return a != nullptr && strcmp(a, b) == 0; }

int32_t switch_value(const SwitchRow& row) { return row.at != nullptr ? *row.at : row.value(); }

bool is_settable(const SwitchRow& row) {
    return row.at != nullptr ? row.unchanged != nullptr : row.set_not_number != Err{};
}

const SwitchRow* switch_rows(size_t* count) {
    *count = sizeof rows / sizeof rows[0];
    return rows;
}

const SwitchRow* find_switch(const char* letter) {
    for (const SwitchRow& row : rows) {
        bool by_row = row.at != nullptr || row.question != nullptr;
        if (by_row && (same(row.letter, letter) || same(row.also, letter))) return &row;
    }
    return nullptr;
}

const SwitchRow* find_set_switch(const char* letter) {
    for (const SwitchRow& row : rows)
        if (is_settable(row) && (same(row.letter, letter) || same(row.set_letter, letter))) return &row;
    return nullptr;
}

void show_switch(const SwitchRow& row) {
    if (row.show != nullptr) {
        row.show();
    } else if (row.at == nullptr) {
        printf(row.shown, row.value());
    } else if (strstr(row.shown, "%s") != nullptr) {
        printf(row.shown, *row.at ? "on" : "off");
    } else if (*row.at) {
        fputs(row.shown, Output);
    }
}

void check_switch_table() {
    for ([[maybe_unused]] const SwitchRow& row : rows) CHECK(row.at == nullptr || *row.at == row.start);
}
}  // namespace tolvex
