#include "session/status.h"

#include "language/language_modes.h"
#include "matrix/matrix_modes.h"
#include "numbers/display_modes.h"
#include "numbers/number_modes.h"
#include "poly/poly.h"
#include "session/mod_out.h"
#include "session/save_file.h"
#include "session/session_modes.h"
#include "session/switch_table.h"

#include <cstdio>
#include <cstring>
namespace tolvex {
static void ring_line() {
    printf(" Basic arithmetic ring: ");
    if (modularmode) {
        printf("modular arithmetic, modulus: %0d%s%s", modulus, mod_is_prime && !finf ? ", a prime" : "",
               finf ? ". This is a finite field of characteristic 2" : "");
    } else if (lintmode) {
        printf("modular arithmetic, modulus: %0d, temporarily off", modulus);
    } else {
        printf("rational arithmetic");
    }
    printf(".\n");
}

static void integer_mode_line() {
    if (integerflag) printf("Integer mode on.\n");
}

static void method_line() {
    if (gauss_cutoff == 1) {
        printf(" Determinant method is Gauss-Bareiss.\n");
    } else if (detcutoff >= 0) {
        printf(" Determinant method is Gauss elimination until %d rows, then minors expansion.\n", detcutoff);
    } else {
        printf(" Determinant method is Lagrange interpolation if polynomials and more than 4 rows.\n");
    }
}

static void prompt_lines() {
    printf(" Prompt is: %s\n Maximum name length is %1d.\n", promptsize < 1 ? "<cr>" : prompt, k_namelength);
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
}

static void file_lines() {
    if (inpuf != nullptr) printf(" Reading from file %s.\n", input_file_name);
    if (outpuf != nullptr) printf(" Saving to file %s.\n", output_file_name);
}

static const SwitchRow* row_of(StatusLine line) {
    size_t count;
    const SwitchRow* rows = switch_rows(&count);
    for (size_t i = 0; i < count; i++)
        if (rows[i].line == line) return &rows[i];
    return nullptr;
}

static void show_line(StatusLine line) {
    switch (line) {
    case StatusLine::ring:
        ring_line();
        break;
    case StatusLine::integer_mode:
        integer_mode_line();
        break;
    case StatusLine::method:
        method_line();
        break;
    case StatusLine::prompt_text:
        prompt_lines();
        break;
    case StatusLine::files:
        file_lines();
        break;
    case StatusLine::polyvars:
        polyvar_lines();
        break;
    case StatusLine::primes:
        mod_out_status();
        break;
    default:
        show_switch(*row_of(line));
        break;
    }
}

void global_dump() {
    putchar('\n');
    for (int32_t i = 1; i < static_cast<int32_t>(StatusLine::count); i++)
        show_line(static_cast<StatusLine>(i));
}
}  // namespace tolvex
