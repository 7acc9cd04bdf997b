#include "language/array_values.h"

#include "language/functions.h"
#include "language/language_modes.h"
#include "language/symbols.h"
#include "quoly/quoly_audit.h"
#include "quoly/quoly_basic.h"
#include "storage/audit.h"
#include "storage/failure.h"

#include <cstdio>
namespace tolvex {
// ---- borrowing -----------------------------------------------------------------------------------------

namespace {
/// A chain that the array has left to the operands that share it.
struct left_chain {
    sparseptr spar;
    int32_t rows;
    left_chain* next;
};
left_chain* left_chains = nullptr;
left_chain* left_garb = nullptr;
quoly buried = nullptr;  // linked by their free-list links
}  // namespace

void begin_borrowing(arrptr a) {
    borrowed_operands++;
    a->lent++;
    if (a->spar != nullptr) a->shared = 1;
}

/// Frees the values, which evaluators may hold, and the chain.
static void free_chain_of_holders(sparseptr* spar, int32_t rows) {
    if (eval_state.held != nullptr) {
        SparseWalk w = walk_sparse(*spar, rows);
        while (colm_ptrptr t = next_row(w))
            for (colm_ptr p = *t; p != nullptr; p = p->next) free_value(&p->val);
    }
    free_sparse(spar, rows, 1);
}

static void empty_graveyard() {
    ValueRelease release;
    while (buried != nullptr) {
        quoly gone = buried;
        buried = gone->next;
        release(&gone);
    }
    while (left_chains != nullptr) {
        left_chain* gone = left_chains;
        left_chains = gone->next;
        free_chain_of_holders(&gone->spar, gone->rows);
        pool_push<&left_chain::next>(left_garb, gone);
    }
}

void end_borrowing(arrptr a) {
    if (--a->lent == 0) a->shared = 0;
    if (--borrowed_operands == 0) empty_graveyard();
}

void bury(quolyptr loc) {
    (*loc)->next = buried;
    buried = *loc;
    *loc = nullptr;
}

void about_to_change(arrptr a) {
    if (!a->shared) return;
    a->shared = 0;
    left_chain* entry = pool_pop<&left_chain::next>(left_garb, nullptr);
    *entry = {a->spar, a->rows, left_chains};
    left_chains = entry;
    copy_sparse(entry->spar, &a->spar, a->rows, 0);
}

// ---- rings ---------------------------------------------------------------------------------------------

bool refuse_array_of_other_ring(const arrnode* a, const tokentipe& name) {
    if (a->ring == modulus) return false;
    error(Err::ring_mismatch, tok_text(name));
    return true;
}

void for_each_array_value(void (*f)(quolyptr value, void* context), void* context) {
    each_array([=](arrptr a) {
        if (a->ring == modulus) for_each_element(a, f, context);
    });
}

// ---- release -------------------------------------------------------------------------------------------

void release_elements(arrptr a) {
    if (a->spar != nullptr) {
        about_to_change(a);
        SparseWalk w = walk_sparse(a->spar, a->rows);
        while (colm_ptrptr t = next_row(w))
            for (colm_ptr p = *t; p != nullptr; p = p->next) free_value(&p->val);
        free_sparse_data(a->spar, a->rows);
        return;
    }
    for (int32_t k = 0; k < a->sizearr; k++) {
        quolyptr slot = dense_slot(a, k);
        if (*slot != nullptr) free_value(slot);
    }
}

static bool is_watched() { return eval_state.held != nullptr || borrowed_operands > 0; }

void settle_holders(const arrnode* a) {
    if (a->spar != nullptr) return;
    for (held_operand* h = eval_state.held; h != nullptr; h = h->below)
        if (h->at != h->own && position_of(h->at) >= a->start) own_value(h->at);
}

void cancel_array(arrptr a) {
    if (is_watched() && a->ring == modulus) release_elements(a);
    settle_holders(a);
    free_array(a);
}

/// True if may_cancel() raises no error for it.
static bool is_free(const arrnode* a) { return !is_alias(a) && a->lent == 0 && a->aliases == 0; }

arrptr cancel_arrays(bool (*listed)(const arrnode* a, const void* context), const void* context) {
    arrptr kept = nullptr;
    for (arrptr* chain = arr_store.begin(); kept == nullptr && chain < arr_store.end(); chain++) {
        for (arrptr a = *chain; kept == nullptr && a != nullptr;) {
            arrptr next = a->next;
            if (listed(a, context)) {
                if (!is_free(a)) {
                    kept = a;
                } else {
                    if (is_watched() && a->ring == modulus) release_elements(a);
                    settle_holders(a);
                    free_array_of_many(a);
                }
            }
            a = next;
        }
    }
    close_holes();
    return kept;
}

void convert_to_sparse(arrptr a) {
    settle_holders(a);
    for (int32_t k = 0; borrowed_operands > 0 && k < a->sizearr; k++) {
        quolyptr slot = dense_slot(a, k);
        if (*slot != nullptr && quoly_iszero(*slot)) free_value(slot);
    }
    fill_sparse(a);
}

/// The running parameter that stands for the array, newest first.
static const arrnode* parameter_of(const arrnode* a) {
    for (const arrnode* p : arr_store)
        for (; p != nullptr; p = p->next)
            if (is_alias(p) && p->father == a) return p;
    return nullptr;
}

static bool refuse_removal(Err code, const tokentipe& name) {
    error(code, tok_text(name));
    fputs(" Cancel aborted.\n", stdout);
    return false;
}

bool may_cancel(arrptr a, const tokentipe& name) {
    if (is_alias(a)) return refuse_removal(Err::array_parameter_fixed, name);
    if (a->lent > 0) {
        error(Err::deletion_in_use, tok_text(name));
        return false;
    }
    if (a->aliases == 0) return true;
    const arrnode* p = parameter_of(a);
    return refuse_removal(Err::array_has_parameter, p == nullptr ? name : p->name);
}

bool removearray(bool fast, tokentipe& name) {
    arrptr a;
    fastestlookup(name, &a);
    if (a == nullptr) {
        if (!fast) error(Err::undefined_array, tok_text(name));
        return fast;
    }
    if (!may_cancel(a, name)) return false;
    cancel_array(a);
    return true;
}
}  // namespace tolvex
