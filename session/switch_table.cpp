#include "session/switch_table.h"

#include "field/field_modes.h"
#include "gcd/gcd_modes.h"
#include "language/language_modes.h"
#include "language/tokens/scanner.h"
#include "matrix/matrix_modes.h"
#include "numbers/display_modes.h"
#include "numbers/number_modes.h"
#include "poly/poly_modes.h"
#include "poly/poly_vars.h"
#include "session/session_modes.h"
#include "storage/checked.h"
#include "storage/interrupt.h"
#include "storage/memory.h"
#include "storage/progress.h"

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
        printf(" Already had that value; no change in error pushing.\n");
        return true;
    }
    if (s.asked) s.value = 1 - addresser;
    addresser = s.left = s.value;
    if (s.loud)
        printf(s.asked ? " Array initial index now %1d.\n" : " Array initial index now %1d\n", addresser);
    return true;
}

static bool store_interrupt_level(SwitchStore& s) {
    if (!in_range(s.value, 0, 2, Err::interrupt_level)) return false;
    s.left = s.value;
    if (!s.asked && s.value == m_interrupt) {
        printf(" Already had that value; no change in command interrupt.\n");
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
     .unchanged = "using disk space for virtual memory"},
    {.letter = "_l",
     .also = "2",
     .set_letter = "2",
     .at = &monomial_list,
     .on = " Will display polynomials as list of monomials.\n",
     .off = " Will display polynomials in nested form.\n",
     .unchanged = "monomial display of polynomials"},
    {.letter = "_L",
     .also = "5",
     .set_letter = "7",
     .at = &lagrange_stash,
     .on = " Will stash coefficents in LaGrange Det computation -- if you have specified a save file.\n",
     .off = " Will not stash coefficents in LaGrange Det computation.\n",
     .set_on = " Will write LaGrange determinants to file.\n",
     .set_off = " No writing LaGrange determinants to file.\n",
     .unchanged = "writing LaGrange determinants to file"},
    {.letter = "_s",
     .set_letter = "6",
     .at = &do_line_sup,
     .start = 1,
     .on = " Will suppress output to terminal of long polys.\n",
     .off = " No suppression of output to terminal of long polys.\n",
     .unchanged = "suppressing output of int32_t polys"},
    {.letter = "_t",
     .set_letter = "5",
     .at = &try_rat,
     .start = 1,
     .on = " Will try fastest probabilistic test for exact poly division.\n",
     .off = " No fastest probabilistic test for exact poly division.\n",
     .unchanged = "fastest probabilistic test for exact poly division",
     .after = set_rat_yes},
    {.letter = "B",
     .at = &chpoly_block,
     .start = 1,
     .on = " Chpoly will be slowed in modularmode.\n",
     .off = " Will optimize Chpoly in modularmode.\n",
     .unchanged = "Chpoly speed",
     .rational_only = true},
    {.letter = "E",
     .at = &extra_line,
     .start = 1,
     .on = " Will do extra line after display.\n",
     .off = " No extra line after display.\n",
     .unchanged = "extra line display"},
    {.letter = "H",
     .at = &alt_form_display,
     .start = 1,
     .on = " Will display modular values using -m, -m+1, ..., 0, 1, ..., n.\n"
           "    where m = (modulus - 1) div 2 and n = modulus div 2.\n",
     .off = " Will display modular values using 0, 1, ..., modulus - 1.\n",
     .set_on = " Will display modular values using -m, -m+1, ..., 0, 1, ..., n\n"
               "    where m = (modulus - 1) div 2 and n = modulus div 2.\n",
     .unchanged = "modular integers display"},
    {.letter = "I",
     .at = &mod_matrix_ok,
     .start = 1,
     .on = " Will try adjoint-CRT method to invert integer matrix.\n",
     .off = " No adjoint-CRT method to invert integer matrices; will use G.E.\n"},
    {.letter = "N",
     .at = &noisy,
     .start = 1,
     .on = " Will display results.\n",
     .off = " Displaying results is deactivated.\n",
     .unchanged = "noise"},
    {.letter = "O",
     .at = &chinhensel,
     .start = 1,
     .on = " Will use Hensel and CRT for multivariate GCD.  This is the default.\n",
     .off = " Use no Hensel or CRT for GCD. This is recommended only over Z/p for small primes.\n",
     .unchanged = "using Hensel or CRT"},
    {.letter = "U",
     .at = &uglyprint,
     .on = " Will do ugly display style.\n WARNING. Func, for, if, and while from terminal don't work when "
           "uglyprint "
           "is on.",
     .off = " Will resume lovely Tolvex style.\n",
     .unchanged = "uglyprint",
     .after = set_continuation},
    {.letter = "V",
     .at = &verbose,
     .on = " Will display informative comments.\n",
     .off = " Informative comments supressed.\n",
     .set_on = " Will do verbose display.\n",
     .set_off = " No verbose display.\n",
     .unchanged = "verbose"},
    {.letter = "W",
     .at = &windy,
     .on = " Extra verbosity turned on.\n",
     .off = " Extra verbosity turned off.\n",
     .set_on = " Will do extra verbose display.\n",
     .set_off = " No extra verbose display.\n",
     .unchanged = "extra verbose (windy)"},
    {.letter = "Z",
     .at = &danger_ok,
     .on = " O.K. to interrupt anytime. This might be dangerous.\n",
     .off = " Can't interrupt at dangerous times.\n"},
    {.letter = "b",
     .at = &close_inpuf,
     .on = " Will close input file if error occurs while loading.\n",
     .off = " Will not immediately close input file if error occurs while loading.\n"},
    {.letter = "c",
     .at = &hen_check,
     .start = 1,
     .on = " will double check hensel gcd answers.\n",
     .off = " will single check hensel gcd answers.\n"},
    {.letter = "e",
     .at = &errorpush,
     .on = " Will push new level after errors.\n",
     .off = " Pushing after errors is deactivated.\n",
     .set_off = " Pushing after errors is deactivated\n",
     .unchanged = ""},
    {.letter = "l",
     .at = &laurent,
     .on = " Negative exponents enabled.\n",
     .off = " Negative exponents disabled.\n",
     .unchanged = "Laurent polynomial status"},
    {.letter = "n",
     .at = &nomodpolyreadin,
     .on = " Will not mod out integers during poly-readin over modular ground ring.\n",
     .off = " Will mod out integers during poly-readin over modular ground ring.\n",
     .unchanged = "poly-readin of negatives",
     .wide = true,
     .leaves_value = true},
    {.letter = "t",
     .at = &timerflag,
     .on = " Timing enabled.\n",
     .off = " Timing disabled.\n",
     .unchanged = "timing"},
    {.letter = "|",
     .at = &pos_mod,
     .start = 1,
     .on = " modding must return non-negatives.\n",
     .off = " modding can return negatives.\n",
     .set_on = " Modulus must return non-negatives.\n",
     .set_off = " Modulus can return negatives.\n",
     .unchanged = "| returning negatives"},

    {.letter = "#",
     .question = " Enter poly_cutoff (usually 10-60):\n",
     .not_number = Err::poly_cutoff_value,
     .set_not_number = Err::switch_not_number,
     .store = store_poly_cutoff,
     .wide = true},
    {.letter = "A",
     .question = " Enter second auxiliary prime search factor:\n",
     .not_number = Err::poly_cutoff_value,
     .set_not_number = Err::switch_not_number,
     .store = store_factor_2,
     .wide = true},
    {.letter = "D",
     .question = " Enter detcutoff:\n",
     .not_number = Err::detcutoff_value,
     .set_not_number = Err::switch_not_number,
     .store = store_detcutoff,
     .wide = true},
    {.letter = "K",
     .question = " Enter Gauss-Bareiss switch:\n",
     .not_number = Err::number_expected,
     .set_not_number = Err::switch_not_number,
     .store = store_gauss_cutoff},
    {.letter = "L",
     .question = " Enter LaGrange cut off:\n",
     .not_number = Err::number_expected,
     .set_not_number = Err::switch_not_number,
     .store = store_lagrange_cut,
     .wide = true},
    {.letter = "X",
     .question = " Enter first auxiliary prime search factor:\n",
     .not_number = Err::first_factor_range,
     .set_not_number = Err::switch_not_number,
     .store = store_factor_1,
     .wide = true},
    {.letter = "a",  // `&a` is a toggle: it asks nothing
     .set_not_number = Err::switch_not_number,
     .store = store_addresser,
     .wide = true},
    {.letter = "m",
     .question = " Enter command interrupt level:\n",
     .not_number = Err::interrupt_level,
     .set_not_number = Err::switch_not_number,
     .store = store_interrupt_level,
     .wide = true},
    {.letter = "u",
     .question = " Enter Sparse pivot heuristic:\n",
     .not_number = Err::number_expected,
     .set_not_number = Err::switch_not_number,
     .store = store_pivot_heuristic,
     .wide = true},
    {.letter = "_d",
     .set_letter = "4",
     .question = " Enter number of columns to display:\n",
     .not_number = Err::columns_not_number,
     .set_not_number = Err::switch_not_number,
     .store = store_columns,
     .wide = true},
    {.letter = "_k",  // has no form `&(x = v)`
     .question = " Enter Karatsuba cutoff:\n",
     .not_number = Err::columns_not_number,
     .store = store_karatsuba_cutoff},
    {.letter = "_r",
     .set_letter = "3",
     .question = " Enter new denominator for random:\n",
     .not_number = Err::columns_not_number,
     .set_not_number = Err::columns_not_number,
     .store = store_rand_denom,
     .wide = true},
};
#pragma GCC diagnostic pop

static bool same(const char* a, const char* b) { return a != nullptr && strcmp(a, b) == 0; }

const SwitchRow* find_switch(const char* letter) {
    for (const SwitchRow& row : rows)
        if (same(row.letter, letter) || same(row.also, letter)) return &row;
    return nullptr;
}

const SwitchRow* find_set_switch(const char* letter) {
    for (const SwitchRow& row : rows) {
        bool settable = row.at != nullptr ? row.unchanged != nullptr : row.set_not_number != Err{};
        if (settable && (same(row.letter, letter) || same(row.set_letter, letter))) return &row;
    }
    return nullptr;
}

void check_switch_table() {
    for ([[maybe_unused]] const SwitchRow& row : rows) CHECK(row.at == nullptr || *row.at == row.start);
}
}  // namespace tolvex
