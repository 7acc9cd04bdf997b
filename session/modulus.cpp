#include "session/modulus.h"

#include "field/field_modes.h"
#include "field/modding.h"
#include "gcd/gcd_stash.h"
#include "language/expre.h"
#include "language/language_modes.h"
#include "language/symbols.h"
#include "language/tokens/scanner.h"
#include "numbers/decimal_io.h"
#include "numbers/primes.h"
#include "numbers/ring_switch.h"
#include "numbers/shape_num.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_convert.h"
#include "session/levels.h"
#include "session/loop.h"
#include "session/mod_out.h"
#include "session/questions.h"
#include "session/ring_list.h"
#include "session/session_modes.h"
#include "session/value_images.h"
#include "storage/scratch.h"

#include <cstdio>
namespace tolvex {
// Polynomial cutoffs of a fresh ring.
static constexpr int32_t k_fresh_cutoff = 80;
static constexpr int32_t k_div_cutoff_rational = 6, k_div_cutoff_modular = 25;
static constexpr int32_t k_decimals_rational = 4, k_decimals_modular = 16;

bool ring_may_change() {
    if (levelcount == 1 && eval_state.held == nullptr) return true;
    error(Err::mode_change_above_level_1);
    return false;
}

static void drop_running_values() {
    free_quoly(&sysnum);
    free_quoly(&prevnum);
}

static void fresh_cutoffs(int32_t division) {
    reset_cutoffs(k_fresh_cutoff);  // a cutoff that the user gave one variable stays
    poly_cutoff = k_fresh_cutoff;
    div_poly_cutoff = division;
}

static void announce_modulus() {
    printf(" Now in modular mode. Modulus is %1d,%s", modulus, mod_is_prime ? " a prime" : " not a prime\n");
    if (!mod_is_prime) return;
    if (f256) {
        printf("; working over the prime field of 2^8 = 256 elements.\n");
    } else if (f2t16) {
        printf("; working over the prime field of 2^16 = 65536 elements.\n");
    } else {
        printf(".\n");
    }
}

bool enter_modular(int32_t m, bool loud) {
    const ScratchMark mark = scratch_mark();
    const bool table_field = m == 256 || m == 65536;
    prepare_values(-1, m);
    interrupts_held++;
    drop_running_values();
    exchange_values(-1, m);
    // An integer goes to a table field through its prime field.
    set_modulus(table_field ? 2 : m);
    mod_is_prime = is_prime(modulus);
    modularmode = lintmode = 1;
    f256 = m == 256;
    f2t16 = m == 65536;
    finf = table_field;
    modding_to_mod();
    fresh_cutoffs(k_div_cutoff_modular);
    set_disp_size(k_decimals_modular);
    if (loud) announce_modulus();
    if (table_field) {
        set_modulus(m);
        mod_is_prime = 1;
        alt_form_display = 0;
    }
    was_in_rat = 0;
    rand_denom_n = 1;
    quoly_set(0, &prevnum);
    gcd_stash_outdated();
    if (pseudo_polynames != nullptr) tower_ring = modulus;
    interrupts_held--;
    test_fields();
    release_images();
    scratch_release(mark);
    return true;
}

bool leave_modular(bool loud) {
    if (loud) printf(" Changing to rational arithmetic.\n");
    if (changed_in_modmode) {
        error(Err::ring_locked);
        return false;
    }
    const ScratchMark mark = scratch_mark();
    prepare_values(modulus, -1);
    interrupts_held++;
    drop_running_values();
    exchange_values(modulus, -1);
    modularmode = lintmode = 0;
    modding_from_mod();
    f256 = f2t16 = finf = 0;
    set_modulus(-1);
    mod_is_prime = 0;
    fresh_cutoffs(k_div_cutoff_rational);
    set_disp_size(k_decimals_rational);
    was_in_rat = 1;
    rand_denom_n = 1;
    quoly_set(0, &prevnum);
    gcd_stash_outdated();
    interrupts_held--;
    release_images();
    scratch_release(mark);
    return true;
}

// ---- words back into the ring --------------------------------------------------------------------------

/// A value without an image becomes 0.
static void reduce_value(quolyptr value, void*) { (void)quoly_reduce_words(value); }

void reduce_stored_words(quolyptr value) {
    if (*value != nullptr) reduce_value(value, nullptr);
    for_each_value(reduce_value, nullptr);
}

// ---- the commands --------------------------------------------------------------------------------------

/// Asks until the answer is a legal modulus; false after an error.
static bool ask_modulus(int32_t* m) {
    for (;;) {
        if (!ask_number(" Enter modulus:\n", Err::modulus_zero, m)) return false;
        if (*m == 0) {
            error(Err::modulus_zero);
            return false;
        }
        if (*m >= 2 && *m <= k_greatest_modulus) return true;
        if (!tt_flag) {
            error(Err::bad_modulus);
            return false;
        }
        printf(" *** Improper modulus %2d. upper limit is 2147483646. Reenter.\n", *m);
    }
}

void toggle_ground_ring(bool listed) {
    if (!ring_may_change()) return;
    if (!listed) list_everything();
    if (modularmode) {
        leave_modular(true);
    } else if (lintmode) {
        error(Err::ring_needed_plain);
    } else {
        int32_t m;
        printf(" Changing to modular arithmetic.\n");
        if (ask_modulus(&m)) enter_modular(m, true);
    }
}

void set_ground_ring(int32_t v, bool rational, bool loud, bool listed) {
    if (lintmode && !modularmode) {
        error(Err::ring_needed_plain);
        return;
    }
    if (!ring_may_change()) return;
    if (!listed) list_everything();
    if (rational) {
        if (modularmode) {
            leave_modular(loud);
        } else {
            printf(" Already in rational mode.\n");
        }
        return;
    }
    if (v < 2 || v > k_greatest_modulus) {
        error(Err::bad_modulus);
        v = 2;
    }
    if (modularmode && v == modulus) {
        printf(" Already in that arithmetic mode\n");
        return;
    }
    if (modularmode && !leave_modular(loud)) return;
    if (loud) printf(" Changing to modular arithmetic.\n");
    enter_modular(v, loud);
}
}  // namespace tolvex
