#include "language/array_display.h"

#include "language/array_elements.h"
#include "matrix/matrix_modes.h"
#include "numbers/display_modes.h"
#include "quoly/quoly_display.h"
#include "storage/interrupt.h"

#include <cinttypes>
namespace tolvex {
// ---- single values -------------------------------------------------------------------------------------

static void put_blanks(FILE* out, int64_t count) {
    for (; count > 0; count--) putc_unlocked(' ', out);
}

// Lines are broken between fields, never within a value: the line length is put aside for so long.
const char* element_text(const quolynode* q, size_t* length) {
    static char* text = nullptr;
    static size_t size = 0;
    static FILE* f = nullptr;
    if (f == nullptr) f = open_memstream(&text, &size);
    rewind(f);
    int16_t line = dispcutoff;
    interrupts_held++;
    dispcutoff = 0;
    quoly_display(f, 0, q);
    dispcutoff = line;
    interrupts_held--;
    long end = ftell(f);
    putc('\0', f);
    fflush(f);
    const char* first = text[0] == ' ' ? text + 1 : text;
    *length = static_cast<size_t>(end - (first - text));
    return first;
}

// ---- dense ---------------------------------------------------------------------------------------------

static void display_row(FILE* out, const ArrOperand& v, int32_t r, int32_t width) {
    int64_t column = 0, owed = 1;  // blanks that the next field begins with
    for (int64_t k = r; k < v.facts.arrsize; k += v.facts.rows) {
        size_t length;
        const char* text = element_text(elements_of(v)[k], &length);
        auto n = static_cast<int64_t>(length);
        if (dispcutoff > 0 && column > 0 && column + owed + n > dispcutoff) {
            putc_unlocked('\n', out);
            column = 0;
            owed = 4;
        }
        put_blanks(out, owed);
        fwrite(text, 1, length, out);
        column += owed + n;
        owed = maxx64(1, width - n);
    }
    putc_unlocked('\n', out);
}

// ---- sparse --------------------------------------------------------------------------------------------

static void display_entries(FILE* out, int32_t row, const colnode* p) {
    fprintf(out, " [%" PRId64, user_number(row));
    for (; p != nullptr; p = p->next) {
        size_t length;
        const char* text = element_text(p->val, &length);
        fprintf(out, ", [%" PRId64 ", ", user_number(p->coord - 1));
        fwrite(text, 1, length, out);
        putc_unlocked(']', out);
    }
    fputs("]\n", out);
}

static void display_sparse(FILE* out, const ArrOperand& v) {
    bool empty = true;
    SparseWalk w = walk_sparse(v.spar, v.facts.rows);
    while (colm_ptrptr t = next_row(w)) {
        poll_interrupt();
        if (*t == nullptr) continue;
        empty = false;
        display_entries(out, w.row, *t);
    }
    if (empty) fputs(" []\n", out);
}

// ---- whole matrices ------------------------------------------------------------------------------------

void arrdisplay(FILE* out, const ArrOperand& v, int32_t width) {
    if (is_sparse(v)) {
        display_sparse(out, v);
        return;
    }
    for (int32_t r = 0; r < v.facts.rows; r++) {
        poll_interrupt();
        display_row(out, v, r, width);
    }
}

/// A number 1 to 255 as that byte, everything else as "?".
static void put_character(FILE* out, const quolynode* q) {
    int32_t code = q->numb ? big_quoly_convert_to_int(q) : 0;
    putc_unlocked(code >= 1 && code <= 255 ? code : '?', out);
}

void arrdisplay_characters(FILE* out, const ArrOperand& v, int32_t width) {
    int64_t written = 0;
    if (is_sparse(v)) {
        SparseWalk w = walk_sparse(v.spar, v.facts.rows);
        while (colm_ptrptr t = next_row(w))
            for (const colnode* p = *t; p != nullptr; p = p->next, written++) put_character(out, p->val);
    } else {
        for (; written < v.facts.arrsize; written++) put_character(out, elements_of(v)[written]);
    }
    put_blanks(out, width - written);
}

void display_system_array() {
    if (syst == nullptr || syst->sizearr == 0 || syst->ring != modulus) return;
    ArrOperand v;
    if (!begin_operand(v)) return;
    borrow_array(v, syst);
    arrdisplay(stdout, v, k_element_width);
    end_operand(v);
}
}  // namespace tolvex
