#include "poly/poly_display.h"

#include "language/tokens/scanner.h"
#include "numbers/decimal_io.h"
#include "numbers/residue.h"
#include "numbers/shape_num.h"
#include "storage/interrupt.h"
namespace tolvex {
namespace {
constexpr int32_t k_lines_shown = 150;

/// One display under way.
struct Show {
    FILE* outf;
    bool tty;
    int32_t* mylength;
    int32_t* lines;
    bool stopped;  // the rest is suppressed
};

// ---- characters ----------------------------------------------------------------------------------------

void put(Show& w, char c) {
    putc_unlocked(c, w.outf);
    ++*w.mylength;
}

void put_text(Show& w, const char* text) {
    for (; *text != 0; text++) put(w, *text);
}

void put_exponent(Show& w, int32_t e) {
    char digits[12];
    int32_t count = 0;
    bool guarded = e < 0 && uglyprint;
    auto v = e < 0 ? 0 - static_cast<uint32_t>(e) : static_cast<uint32_t>(e);
    put(w, '^');
    if (guarded) put(w, '(');
    if (e < 0) put(w, '-');
    do digits[count++] = static_cast<char>('0' + v % 10);
    while ((v /= 10) != 0);
    while (count > 0) put(w, digits[--count]);
    if (guarded) put(w, ')');
}

void break_line(Show& w) {
    if (w.tty && !uglyprint) putc_unlocked(' ', w.outf);
    if (w.tty || uglyprint) putc_unlocked(continuation, w.outf);
    putc_unlocked('\n', w.outf);
    *w.mylength = 0;
    if (++*w.lines > k_lines_shown && w.tty && do_line_sup) {
        fputs("   ... more output suppressed ... \n", w.outf);
        linesuppression = 0;
        w.stopped = true;
    }
}

/// Ends the line if it is within `reserve` characters of its length. The safe point of a display: once a
/// line, or, where lines are not broken, every time.
void break_if_full(Show& w, int32_t reserve) {
    if (dispcutoff > 0) {
        if (*w.mylength <= 0 || *w.mylength < dispcutoff - reserve) return;
        break_line(w);
    }
    poll_interrupt();
}

// ---- signs ---------------------------------------------------------------------------------------------

/// The word of lintmode as it is shown.
int32_t shown_word(const number* n) { return modularmode ? shown_residue(n->lint) : n->lint; }

bool shown_negative(const number* n) { return lintmode ? shown_word(n) < 0 : n->head->value < 0; }

/// 1 or -1 if the number is shown as that, else 0.
int32_t shown_unit(const number* n) {
    int32_t v;
    if (lintmode) {
        v = shown_word(n);
    } else {
        v = n->size == 1 ? n->head->value : 0;
    }
    return v == 1 || v == -1 ? v : 0;
}

/// The coefficient of a node: the node itself if it is a leaf.
const polynode* coefficient(const polynode* t) { return t->numb ? t : t->pcoef; }

/// True if the coefficient of t stands in parentheses: a sum, or a polynomial before a power.
bool in_parentheses(const polynode* t) {
    if (t->numb || (t->pcoef->numb && t->pcoef->next == nullptr)) return false;
    return t->exp != 0 || t->pcoef->next != nullptr;
}

/// True if the text of the term t begins with a minus. A parenthesis hides the sign inside.
bool begins_with_minus(const polynode* t) {
    while (!in_parentheses(t)) {
        const polynode* c = coefficient(t);
        if (c->numb) return shown_negative(c->ncoef);
        t = c;
    }
    return false;
}

void put_separator(Show& w, const polynode* t) {
    if (!uglyprint) put(w, ' ');
    if (begins_with_minus(t)) return;
    put(w, '+');
    if (!uglyprint) put(w, ' ');
}

/// The number before a power or alone; 1 and -1 before a power leave only the sign. True if digits were
/// written.
bool put_number(Show& w, const number* n, bool before_power, bool extra_space) {
    int32_t unit = before_power ? shown_unit(n) : 0;
    if (unit == 0) {
        display(w.outf, w.tty, 0, n, w.mylength, extra_space);
        return true;
    }
    if (unit < 0) {
        put(w, '-');
        if (extra_space && !uglyprint) put(w, ' ');
    }
    return false;
}

void put_power(Show& w, polypt q, int32_t e) {
    put_text(w, tok_text(q->let));
    if (e != 1) put_exponent(w, e);
}

// ---- the nested form -----------------------------------------------------------------------------------

void check_node(const polynode* t) {
    if (t->numb) {
        if (t->next != nullptr && !laurent) tolvex_error(" Warning! numb next not nil in this polynomial.");
        return;
    }
    if (t->exp == 0 && t->pcoef->numb && t->pcoef->next == nullptr && !(laurent && t->next != nullptr))
        tolvex_error(" Warning! extra 0-exponent node in this polynomial. Trash it.");
}

void show_nested(Show& w, const polynode* p, polypt q, bool first_extra) {
    if (q == nullptr) tolvex_error(" q = NULL at start of poly_display.");
    bool extra = first_extra;
    for (const polynode* t = p; t != nullptr; t = t->next, extra = true) {
        check_node(t);
        if (t != p) put_separator(w, t);
        const polynode* c = coefficient(t);
        bool digits = true;
        if (in_parentheses(t)) {
            break_if_full(w, 0);
            if (w.stopped) return;
            put(w, '(');
            show_nested(w, c, q->next, false);
            if (w.stopped) return;
            put(w, ')');
        } else if (!c->numb) {
            show_nested(w, c, q->next, extra);  // a level that does not occur prints nothing of its own
        } else {
            digits = put_number(w, c->ncoef, t->exp != 0, extra);
        }
        if (w.stopped) return;
        if (t->exp != 0) {
            if (uglyprint && digits) put(w, '*');
            put_power(w, q, t->exp);
        }
        break_if_full(w, 0);
        if (w.stopped) return;
    }
}

// ---- the list of monomials -----------------------------------------------------------------------------

/// The exponents on the way from the top to a leaf.
struct Monomial {
    int32_t exps[k_levels];
    int32_t levels;
    bool first;
    bool first_extra;
};

void put_monomial(Show& w, const number* n, const Monomial& m, polypt q) {
    constexpr int32_t before_term = 10, before_factor = 4, before_exponent = 1;
    bool factors = false;
    for (int32_t i = 0; i < m.levels; i++) factors = factors || m.exps[i] != 0;
    if (!m.first) {
        break_if_full(w, before_term);
        if (w.stopped) return;
        if (!uglyprint) put(w, ' ');
        if (!shown_negative(n)) put_text(w, uglyprint ? "+" : "+ ");
    }
    bool something = put_number(w, n, factors, !m.first || m.first_extra), after_power = false;
    for (int32_t i = 0; i < m.levels; i++, q = q->next) {
        if (m.exps[i] == 0) continue;
        break_if_full(w, before_factor);
        if (w.stopped) return;
        if (uglyprint && something) put(w, '*');
        if (!uglyprint && after_power) put(w, ' ');
        put_text(w, tok_text(q->let));
        if (m.exps[i] != 1) {
            break_if_full(w, before_exponent);
            if (w.stopped) return;
            put_exponent(w, m.exps[i]);
        }
        something = after_power = true;
    }
}

void monomial_disp(Show& w, const polynode* p, Monomial& m, polypt top, polypt q) {
    for (const polynode* t = p; t != nullptr && !w.stopped; t = t->next) {
        if (t->numb) {
            put_monomial(w, t->ncoef, m, top);
            m.first = false;
            continue;
        }
        if (q == nullptr) tolvex_error(" q = NULL at start of poly_display.");
        m.exps[m.levels++] = t->exp;
        monomial_disp(w, t->pcoef, m, top, q->next);
        m.levels--;
    }
}
}  // namespace

void poly_display(FILE* outf, boolean outf_is_tty, const polynode* p, int32_t* mylength, polypt q,
                  boolean extra_space, boolean maybe_just_number, int32_t* lines) {
    Show w = {outf, outf_is_tty != 0, mylength, lines, false};
    if (p->numb && p->next == nullptr && (maybe_just_number || q == nullptr)) {
        display(outf, outf_is_tty, 0, p->ncoef, mylength, extra_space);
    } else if (monomial_list && q != nullptr && q->next != nullptr) {
        Monomial m = {{}, 0, true, extra_space != 0};
        monomial_disp(w, p, m, q, q);
    } else {
        show_nested(w, p, q, extra_space != 0);
    }
}

// ---- the dump, sizes -----------------------------------------------------------------------------------

void crude_poly_disp(FILE* outf, const polynode* p, int32_t depth, polypt q) {
    if (depth > k_max_polys) return;
    for (; p != nullptr; p = p->next) {
        fprintf(outf, "%*s", 2 * depth, "");
        if (p->numb) {
            int32_t length = 0;
            if (p->ncoef != nullptr && (lintmode || p->ncoef->size > 0))
                display(outf, 0, 0, p->ncoef, &length, 0);
            fputs(p->next != nullptr ? "*\n" : "\n", outf);
            continue;
        }
        if (q != nullptr) {
            fprintf(outf, "%s^%d\n", tok_text(q->let), p->exp);
        } else {
            fprintf(outf, "level %d^%d\n", depth + 1, p->exp);
        }
        crude_poly_disp(outf, p->pcoef, depth + 1, q != nullptr ? q->next : nullptr);
    }
}

static int64_t bytes_of(const polynode* p) {
    int64_t sum = 0;
    for (; p != nullptr; p = p->next)
        sum += polynodesize + (p->numb ? int64_t{sizenumber(p->ncoef)} : bytes_of(p->pcoef));
    return sum;
}

int32_t sizepoly(const polynode* p) {
    int64_t bytes = bytes_of(p);
    return bytes > INT32_MAX ? INT32_MAX : static_cast<int32_t>(bytes);
}
}  // namespace tolvex
