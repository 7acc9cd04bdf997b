// Variables and arrays, on the terminal and in a saved session.
#include "language/evaluator.h"
#include "language/other_rings.h"
#include "language/symbols.h"
#include "numbers/display_modes.h"
#include "poly/poly_modes.h"
#include "poly/poly_test.h"
#include "quoly/quoly_display.h"
#include "session/listing.h"
#include "session/listing_sort.h"
#include "session/plain_display.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <cstring>
namespace tolvex {
static constexpr int32_t k_most_of_a_name = 10;  // variables of one name that a display shows

/// The variable of that name at this place among those of the name, 0 the newest; nil if there is none.
static varptr nth_variable(const tokentipe& name, int32_t place) {
    varptr p = *sca_store.chain_of(name);
    for (; p != nullptr; p = p->next)
        if (same_name(p->let, name) && place-- == 0) return p;
    return nullptr;
}

/// All variables in this order, or in that of a display; *count of them. In scratch memory of the caller's
/// mark.
static ListedName* gather_variables(int64_t* count, bool saved) {
    int64_t n = 0;
    for (varptr bucket : sca_store)
        for (varptr p = bucket; p != nullptr; p = p->next) n++;
    auto* entries = scratch_array<ListedName>(maxx64(n, 1));
    n = 0;
    for (varptr bucket : sca_store)
        for (varptr p = bucket; p != nullptr; p = p->next) entries[n++] = {p->let, 0, 0};
    sort_names(entries, n, saved ? NameOrder::oldest_first : display_order(n));
    *count = n;
    return entries;
}

/// Shows the value where it lives: statements of a level that an interrupt opens may replace it meanwhile.
static void show_held(FILE* file, bool to_terminal, quolyptr at) {
    Value v = {{at, nullptr, nullptr}, nullptr};
    v.hold.own = &v.own;
    hold(&v);
    quoly_display(file, to_terminal, value_of(&v));
    let_go(&v);
    release(&v);
}

// ---- the display ---------------------------------------------------------------------------------------

static void write_p_stuff(varptr p) {
    printf(" %s", tok_text(p->let));
    if (p->val != nullptr && p->val->numb && p->val->arr_arg) {
        fputs(" array parameter.\n", stdout);
        return;
    }
    if (p->val != nullptr) {
        fputs(" :=", stdout);
        show_held(stdout, true, &p->val);
    }
    putchar('\n');
}

/// What stands behind the 10th of a name.
static void write_excess(const ListedName* entries, int64_t n, int64_t i) {
    int64_t more = 0;
    for (int64_t k = i; k < n && same_name(entries[k].name, entries[i].name); k++) more++;
    printf(" ... %d more with this name. \n", static_cast<int32_t>(more));
}

static void list_values(const ListedName* entries, int64_t n) {
    for (int64_t i = 0; i < n; i++) {
        poll_interrupt();
        if (entries[i].place < k_most_of_a_name) {
            varptr p = nth_variable(entries[i].name, entries[i].place);
            if (p != nullptr) write_p_stuff(p);
        } else if (entries[i].place == k_most_of_a_name && n <= k_sorted_listing) {
            write_excess(entries, n, i);
        }
    }
}

/// The names on lines that end at the display width.
static void list_names(const ListedName* entries, int64_t n) {
    size_t column = 0;
    for (int64_t i = 0; i < n; i++) {
        size_t length = strlen(tok_text(entries[i].name)) + 1;
        if (column > 0 && dispcutoff > 0 && column + length > static_cast<size_t>(dispcutoff)) {
            putchar('\n');
            column = 0;
        }
        printf(" %s", tok_text(entries[i].name));
        column += length;
    }
    if (n > 0) putchar('\n');
}

void listvars(bool values) {
    ScratchMark mark = scratch_mark();
    int64_t n;
    const ListedName* entries = gather_variables(&n, false);
    if (values)
        list_values(entries, n);
    else
        list_names(entries, n);
    scratch_release(mark);
    fputs("\narrays:\n\n", stdout);
    list_arrays();
}

// ---- the saved form ------------------------------------------------------------------------------------

/// How many parameters of that name running calls have: they hide the global variable.
static int32_t parameters_named(const tokentipe& name) {
    int32_t n = 0;
    for (const CallFrame* c = call_frames; c != nullptr; c = c->below)
        for (const paramnode* p = c->f->pars; p != nullptr; p = p->next) n += same_name(p->let, name);
    return n;
}

static bool is_polynomial(const quolynode* q) { return !q->numb && q->denom == nullptr; }

static void save_variable(FILE* file, varptr p) {
    if (stands_in_other_ring(&p->val)) {
        printf(" Warning: %s stands in another ring and has not been saved.\n", tok_text(p->let));
        return;
    }
    if (p->val == nullptr) return;
    fprintf(file, " %s :=", tok_text(p->let));
    if (is_polynomial(p->val) && !monomial_list && !uglyprint) fputs(" &_n", file);
    show_held(file, false, &p->val);
    fputs(";\n", file);
}

void save_variables(FILE* file) {
    ScratchMark mark = scratch_mark();
    int64_t n;
    const ListedName* entries = gather_variables(&n, true);
    begin_plain_residues();
    for (int64_t i = 0; i < n; i++) {
        poll_interrupt();
        bool oldest = i == 0 || !same_name(entries[i].name, entries[i - 1].name);
        varptr p = nth_variable(entries[i].name, entries[i].place);
        if (oldest && p != nullptr && entries[i].place >= parameters_named(entries[i].name))
            save_variable(file, p);
    }
    end_plain_residues();
    scratch_release(mark);
}
}  // namespace tolvex
