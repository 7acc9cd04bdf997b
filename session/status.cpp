#include "session/status.h"

#include "gcd/gcd_modes.h"
#include "language/language_modes.h"
#include "matrix/matrix_modes.h"
#include "numbers/display_modes.h"
#include "numbers/number_modes.h"
#include "poly/poly.h"
#include "session/session_modes.h"
#include "storage/interrupt.h"
#include "storage/progress.h"

#include <cstdio>
#include <cstring>
namespace tolvex {
static const char* on_off(boolean on) { return on ? "on.\n" : "off.\n"; }

static void ring_lines() {
    printf(" Basic arithmetic ring: ");
    if (modularmode) {
        printf("modular arithmetic, modulus: %0d%s%s", modulus, mod_is_prime && !finf ? ", a prime" : "",
               finf ? ". This is a finite field of characteristic 2" : "");
    } else if (lintmode) {
        printf("modular arithmetic, modulus: %0d, temporarily off", modulus);
    } else {
        printf("rational arithmetic");
    }
    printf(".\n Display constant is %1d.\n", disp_size);
}

static void switch_lines() {
    printf(" Pushing after errors is %s", on_off(errorpush));
    if (integerflag) printf("Integer mode on.\n");
    printf(" Displaying results is %s", on_off(noisy));
    printf(" Block on Chpoly is %s", on_off(chpoly_block));
    printf(" Hensel gcd double checking is %s", on_off(hen_check));
    printf(" GCD stashing level is %d, so it's %s. table mass: %lli\n", lookupgcd,
           lookupgcd > 0 ? "on" : "off", 0LL);
}

static void method_lines() {
    printf(" Detcutoff is %1d.\n Kartasuba cutoff for poly multiplication is %1d.\n", detcutoff,
           simplest_poly_cutoff);
    if (gauss_cutoff == 1) {
        printf(" Determinant method is Gauss-Bareiss.\n");
    } else if (detcutoff >= 0) {
        printf(" Determinant method is Gauss elimination until %d rows, then minors expansion.\n", detcutoff);
    } else {
        printf(" Determinant method is Lagrange interpolation if polynomials and more than 4 rows.\n");
    }
    printf(" Sparse pivot heuristic is %d.\n Array initial index is %d.\n", pseudet_heur, addresser);
    if (m_interrupt == 0) {
        printf(" Command interrupt is off.\n");
    } else {
        printf(" Command interrupt is on, level %d.\n", m_interrupt);
    }
}

static void display_lines() {
    printf(" Prompt is: %s\n Maximum name length is %1d.\n", promptsize < 1 ? "<cr>" : prompt, k_namelength);
    if (uglyprint) printf(" Ugly printing is on.\n");
    if (verbose) printf(" Verbose display is on.\n");
    if (windy) printf(" Extra verbose display is on.\n");
    if (lagrange_stash) {
        printf(" Writing LaGrange determ. coefficients to file is on.\n");
        if (!verbose || !windy) printf("    But verbose and windy must be turned on too.\n");
    }
    if (timerflag) printf(" Timing is enabled.\n");
    printf(" Denominator for random is:\n %d\n", rand_denom_n);
}

/// The names in the order of their levels; the line is broken at the display width.
static void polyvar_lines() {
    if (polynames == nullptr) {
        printf(" No polynomial variables exist.\n");
    } else {
        printf(" These %1d polynomial variables have been created:\n", number_polys);
        size_t column = 0;
        for (polypt v = polynames; v != nullptr; v = v->next) {
            size_t length = strlen(tok_text(v->let)) + 1;
            if (column > 0 && dispcutoff > 0 && column + length > static_cast<size_t>(dispcutoff)) {
                putchar('\n');
                column = 0;
            }
            printf(" %s", tok_text(v->let));
            column += length;
        }
        putchar('\n');
    }
    if (field_depth > 0) printf(" Field depth is: %1d.\n", field_depth);
    if (laurent) printf(" Laurent polynomials allowed.\n");
}

void global_dump() {
    putchar('\n');
    ring_lines();
    switch_lines();
    method_lines();
    display_lines();
    polyvar_lines();
    printf(" There are 0 first auxiliary primes: \n There are no second auxiliary primes.\n");
    if (danger_ok) printf(" *** Can interrupt anytime! This is a bit dangerous.\n");
}
}  // namespace tolvex
