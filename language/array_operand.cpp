#include "language/array_operand.h"

#include "language/array_elements.h"
#include "quoly/quoly_basic.h"
#include "storage/failure.h"
#include "storage/interrupt.h"

#include <cstring>
#include <utility>
namespace tolvex {
static void release_contents(ArrOperand& v) {
    if (v.lender != nullptr) {
        arrptr lender = v.lender;
        v.lender = nullptr;
        v.spar = nullptr;
        v.facts = {};
        v.arr_free = 0;
        end_borrowing(lender);
    }
    if (v.spar != nullptr) {
        free_sparse(&v.spar, v.facts.rows, v.arr_free);
    } else if (v.arr_free) {
        workptr arr = elements_of(v);
        ValueRelease release;
        for (int64_t k = 0; k < v.facts.arrsize; k++) release(&arr[k]);
    }
    free_quoly(&v.n);
}

void clear_operand(ArrOperand& v) {
    release_contents(v);
    v.facts = {};
    v.arr_free = 0;
}

static void drop_operand(void* what) {
    auto* v = static_cast<ArrOperand*>(what);
    clear_operand(*v);
    free_work();
}

bool begin_operand(ArrOperand& v) {
    v = {};
    if (!new_worknode(&v.work)) return false;
    begin_unfinished(v.unfinished, drop_operand, &v);
    v.hold = {&v.n, &v.n, eval_state.held};
    eval_state.held = &v.hold;
    return true;
}

void end_operand(ArrOperand& v) {
    end_unfinished(v.unfinished);
    eval_state.held = v.hold.below;
    drop_operand(&v);
}

void swap_operands(ArrOperand& a, ArrOperand& b) {
    std::swap(workhead[a.work - 1], workhead[b.work - 1]);
    std::swap(a.facts, b.facts);
    std::swap(a.arr_free, b.arr_free);
    std::swap(a.spar, b.spar);
    std::swap(a.n, b.n);
    std::swap(a.lender, b.lender);
}

void scalar_zero(ArrOperand& v) {
    clear_operand(v);
    quoly_set(0, &v.n);
}

bool fail_operand(ArrOperand& v, Err code, const char* symbol) {
    error(code, symbol);
    scalar_zero(v);
    return false;
}

bool make_dense(ArrOperand& v, int64_t rows, int64_t cols) {
    if (oversize(rows, cols)) return fail_operand(v, Err::array_too_large);
    free_quoly(&v.n);
    v.facts = {rows * cols, static_cast<int32_t>(rows)};
    v.arr_free = 1;
    memset(static_cast<void*>(elements_of(v)), 0, static_cast<size_t>(rows * cols) * sizeof(quoly));
    return true;
}

void make_sparse_operand(ArrOperand& v, int64_t rows, int64_t cols, sparseptr chain) {
    free_quoly(&v.n);
    v.facts = {rows * cols, static_cast<int32_t>(rows)};
    v.arr_free = 1;
    if (chain == nullptr) sparse_init(&chain, v.facts.rows);
    v.spar = chain;
}

void borrow_array(ArrOperand& v, arrptr a) {
    workptr arr = elements_of(v);
    for (int32_t k = 0; a->spar == nullptr && k < a->sizearr; k++) arr[k] = *value_slot(a, k);
    v.spar = a->spar;
    v.facts = {a->sizearr, a->rows};
    v.arr_free = 0;
    v.lender = a;
    begin_borrowing(a);
}

void copy_operand(const ArrOperand& v, ArrOperand& copy) {
    if (is_sparse(v)) {
        sparseptr chain = nullptr;
        copy_sparse_polled(v.spar, &chain, v.facts.rows);
        make_sparse_operand(copy, v.facts.rows, columns_of(v), chain);
        return;
    }
    make_dense(copy, v.facts.rows, columns_of(v));
    for (int64_t k = 0; k < v.facts.arrsize; k++) {
        poll_every<1024>(k);
        quoly_assign(elements_of(v)[k], &elements_of(copy)[k]);
    }
}

void spread_scalar(ArrOperand& v, arr_descr shape) {
    workptr arr = elements_of(v);
    memset(static_cast<void*>(arr), 0, static_cast<size_t>(shape.arrsize) * sizeof(quoly));
    quoly value = v.n;
    v.n = nullptr;
    v.facts = shape;
    v.arr_free = 1;
    arr[0] = value;
    for (int64_t k = 1; k < shape.arrsize; k++) {
        poll_every<1024>(k);
        quoly_assign(value, &arr[k]);
    }
}

void make_private(ArrOperand& v) {
    if (is_scalar(v) || v.arr_free) return;
    if (is_sparse(v)) {
        sparseptr copy = nullptr;
        copy_sparse_polled(v.spar, &copy, v.facts.rows);
        v.spar = copy;
    } else {
        workptr arr = elements_of(v);
        for (int64_t k = 0; k < v.facts.arrsize; k++) {
            poll_every<1024>(k);
            quoly lent = arr[k];
            arr[k] = nullptr;
            quoly_assign(lent, &arr[k]);
        }
    }
    v.arr_free = 1;
    arrptr lender = v.lender;
    v.lender = nullptr;
    if (lender != nullptr) end_borrowing(lender);
}

bool expand_to_dense(ArrOperand& v) {
    if (!is_sparse(v)) return true;
    if (v.facts.arrsize > k_greatest_array) return fail_operand(v, Err::sparse_too_large);
    make_private(v);
    workptr arr = elements_of(v);
    memset(static_cast<void*>(arr), 0, static_cast<size_t>(v.facts.arrsize) * sizeof(quoly));
    SparseWalk w = walk_sparse(v.spar, v.facts.rows);
    while (colm_ptrptr t = next_row(w)) {
        for (colm_ptr p = *t; p != nullptr; p = p->next) {
            poll_interrupt();
            arr[w.row + int64_t{p->coord - 1} * v.facts.rows] = p->val;
            p->val = nullptr;
        }
    }
    free_sparse(&v.spar, v.facts.rows, 1);
    for (int64_t k = 0; k < v.facts.arrsize; k++) {
        poll_every<1024>(k);
        if (arr[k] == nullptr) quoly_set(0, &arr[k]);
    }
    return true;
}

void contract_to_sparse(ArrOperand& v) {
    sparseptr chain = nullptr;
    sparse_init(&chain, v.facts.rows);
    workptr arr = elements_of(v);
    for (int32_t c = static_cast<int32_t>(columns_of(v)); c >= 1; c--) {
        quolyptr column = arr + int64_t{c - 1} * v.facts.rows;
        SparseWalk w = walk_sparse(chain, v.facts.rows);
        while (colm_ptrptr head = next_row(w)) {
            poll_every<1024>(w.row);
            put_in_front(head, c, &column[w.row]);
        }
        poll_interrupt();
    }
    v.spar = chain;
}
}  // namespace tolvex
