#include "language/array_elements.h"

#include "language/array_values.h"
#include "language/small_words.h"
#include "language/symbols.h"
#include "language/tokens/look_ahead.h"
#include "matrix/matrix_modes.h"
#include "numbers/ring_switch.h"
#include "storage/scratch.h"

#include <cstdio>
#include <cstring>
namespace tolvex {
// ---- subscripts ----------------------------------------------------------------------------------------

// Greater than any subscript, and so small that sums of a few of them fit.
static constexpr int64_t k_beyond = INT64_MAX / 4;

/// The number as a word, +-k_beyond if it has more than two digits.
static int64_t word_of(const number* x) {
    if (lintmode) return x->lint;
    if (x->size == 1) return x->head->value;
    if (x->size > 2) return x->head->value < 0 ? -k_beyond : k_beyond;
    return int64_t{x->head->value} * k_base + x->tail->value;
}

bool read_plain_integer(FILE* inf, nameptr* flag, Err not_a_number, int64_t* value) {
    if (*flag != nullptr && small_expression(flag, value)) return true;
    boolean was_modular = 0;
    if (modularmode) check_modular(&was_modular);
    Value v;
    read_expression(inf, &v, flag);
    bool good = value_of(&v)->numb;
    if (good)
        *value = word_of(value_of(&v)->ncoef);
    else
        error(not_a_number);
    release(&v);
    if (was_modular) restore_modular(was_modular);
    return good;
}

bool evalcoords(FILE* inf, nameptr* flag, char closer, char separator, Subscripts* s) {
    if (!read_plain_integer(inf, flag, Err::index_not_number, &s->i)) return false;
    s->two = at_char(separator);
    s->j = addresser;
    if (s->two) {
        next_token(inf, flag);
        if (!read_plain_integer(inf, flag, Err::index_not_number, &s->j)) return false;
    }
    if (at_char(closer) || at_char(']')) {
        next_token(inf, flag);
        return true;
    }
    error(Err::index_separator);
    return false;
}

// ---- rows of sparse arrays -----------------------------------------------------------------------------

namespace {
/// Columns that are gathered, in scratch memory.
struct ColumnList {
    int32_t* at;
    int32_t count, room;
};
}  // namespace

static void add_column(ColumnList* list, int32_t column) {
    if (list->count == list->room) {
        auto* wider = scratch_array<int32_t>(2 * int64_t{list->room});
        memcpy(wider, list->at, static_cast<size_t>(list->count) * sizeof(int32_t));
        list->at = wider;
        list->room *= 2;
    }
    list->at[list->count++] = column;
}

/// The columns of row r join the sorted list. False after error 47 for one beyond the values of loop
/// variables.
static bool merge_row_of(const arrnode* a, int32_t r, const tokentipe& name, ColumnList* list) {
    ColumnList merged = {scratch_array<int32_t>(list->room), 0, list->room};
    int32_t k = 0;
    for (const colnode* p = *sparse_row(a->spar, r); p != nullptr; p = p->next) {
        int64_t number = user_number(p->coord - 1);
        if (number > k_max_digit || number < -k_max_digit) {
            error(Err::loop_index_range, tok_text(name));
            return false;
        }
        auto column = static_cast<int32_t>(number);
        while (k < list->count && list->at[k] < column) add_column(&merged, list->at[k++]);
        if (k < list->count && list->at[k] == column) k++;
        add_column(&merged, column);
    }
    while (k < list->count) add_column(&merged, list->at[k++]);
    *list = merged;
    return true;
}

/// The array of a loop header, from its "[" up to and over the "]".
static arrptr array_of_header(FILE* inf, nameptr* flag, tokentipe* name) {
    arrptr a = nullptr;
    next_token(inf, flag);
    *name = token;
    if (at_char('%')) {
        a = read_array_place(inf, flag);
        if (a != nullptr) *name = a->name;
    } else if (array_seek(*name, &a)) {
        next_token(inf, flag);
    }
    if (a == nullptr || !expect(inf, flag, ']', Err::close_bracket_expected)) return nullptr;
    a = array_itself(a);
    if (a->spar != nullptr) return refuse_array_of_other_ring(a, *name) ? nullptr : a;
    error(Err::loop_over_dense, tok_text(*name));
    return nullptr;
}

bool columns_of_rows(FILE* inf, nameptr* flag, const int32_t** columns, int32_t* count) {
    constexpr int32_t k_first_room = 64;
    tokentipe name;
    arrptr a = array_of_header(inf, flag, &name);
    if (a == nullptr) return false;
    ElementTarget target = {a->name, a->time, 0};
    ColumnList list = {scratch_array<int32_t>(k_first_room), 0, k_first_room};
    for (;;) {
        int64_t row, index;
        if (!read_plain_integer(inf, flag, Err::index_not_number, &row)) return false;
        a = array_of(target);
        if (a == nullptr || a->spar == nullptr) {
            error(Err::undefined_array, tok_text(name));
            return false;
        }
        if (!find_place(a, row, addresser, true, name, &index)) return false;
        if (!merge_row_of(a, row_of_place(a, index), name, &list)) return false;
        if (!at_char(',')) break;
        next_token(inf, flag);
    }
    *columns = list.at;
    *count = list.count;
    return true;
}

// ---- targets -------------------------------------------------------------------------------------------

arrptr array_of(const ElementTarget& target) {
    arrptr a = *arr_store.chain_of(target.name);
    while (a != nullptr && a->time != target.stamp) a = a->next;
    return a;
}

quolyptr location_of(const ElementTarget& target) {
    arrptr a = array_of(target);
    return a == nullptr ? nullptr : place_slot(a, target.index);
}

/// The link of the entry of a sparse array, or the one where it would come in.
static colm_ptrptr link_of_entry(arrptr a, int64_t index) {
    return get_sparse_colm(sparse_row(a->spar, row_of_place(a, index)), column_of_place(a, index));
}

static arrptr array_to_change(const ElementTarget& target) {
    arrptr a = array_of(target);
    if (a == nullptr)
        error(Err::undefined_array, tok_text(target.name));
    else if (refuse_array_of_other_ring(a, target.name))
        return nullptr;
    else
        about_to_change(a);
    return a;
}

quolyptr location_to_change(const ElementTarget& target) {
    arrptr a = array_to_change(target);
    if (a == nullptr) return nullptr;
    quolyptr slot = place_slot(a, target.index);
    if (slot == nullptr) {
        colm_ptrptr link = link_of_entry(a, target.index);
        *link = newcolm(column_of_place(a, target.index), nullptr, *link);
        slot = &(*link)->val;
    }
    if (*slot == nullptr) quoly_set(0, slot);
    return slot;
}

/// The entry at the link goes; who holds its value inherits it.
static void drop_entry(colm_ptrptr link) {
    free_value(&(*link)->val);
    free_colm(link);
}

void purge_element(const ElementTarget& target) {
    arrptr a = array_of(target);
    if (a == nullptr || a->spar == nullptr) return;
    colm_ptrptr link = link_of_entry(a, target.index);
    if (stands_at(link, column_of_place(a, target.index)) && quoly_iszero((*link)->val)) drop_entry(link);
}

static void store_entry(arrptr a, int64_t index, quolyptr value) {
    int32_t col = column_of_place(a, index);
    colm_ptrptr link = link_of_entry(a, index);
    bool there = stands_at(link, col);
    if (quoly_iszero(*value)) {
        free_quoly(value);
        if (there) drop_entry(link);
        return;
    }
    if (there)
        free_value(&(*link)->val);
    else
        *link = newcolm(col, nullptr, *link);
    (*link)->val = *value;
    *value = nullptr;
}

quolyptr number_to_change(const ElementTarget& target) {
    arrptr a = array_of(target);
    if (a == nullptr || a->spar != nullptr || a->ring != modulus || borrowed_operands > 0) return nullptr;
    quolyptr slot = place_slot(a, target.index);
    if (*slot == nullptr || !(*slot)->numb) return nullptr;
    own_value(slot);
    return slot;
}

bool store_element(const ElementTarget& target, quolyptr value) {
    arrptr a = array_to_change(target);
    if (a == nullptr) {
        free_quoly(value);
        return false;
    }
    if ((*value)->numb) (*value)->arr_arg = 0;
    if (a->spar != nullptr) {
        store_entry(a, target.index, value);
        return true;
    }
    quolyptr slot = arp_slot(a->start + static_cast<int32_t>(target.index));
    if (*slot != nullptr) free_value(slot);
    *slot = *value;
    *value = nullptr;
    return true;
}

// ---- reading -------------------------------------------------------------------------------------------

void note_uninitialized(const char* which) {
    constexpr int32_t k_most_warnings = 20;
    uninit++;
    if (uninit <= k_most_warnings)
        printf("Warning. Uninitialized array element%s%s has been set to 0.\n",
               which == nullptr ? "" : " in ", which == nullptr ? "" : which);
    else if (uninit == k_most_warnings + 1)
        fputs(" ....etc...\n", stdout);
}

void note_uninitialized_in(const tokentipe& name) {
    char text[k_namelength + 3];
    snprintf(text, sizeof text, "[%s]", tok_text(name));
    note_uninitialized(text);
}

quolyptr value_slot(const arrnode* a, int32_t k) {
    quolyptr slot = dense_slot(a, k);
    if (*slot == nullptr) {
        quoly_set(0, slot);
        note_uninitialized(nullptr);
    }
    return slot;
}

/// True in front of ":=", ":+" and ":-".
static bool assignment_follows(FILE* inf, const nameptr* flag) {
    return at_char(':') &&
           (sign_follows(inf, flag, '=') || sign_follows(inf, flag, '+') || sign_follows(inf, flag, '-'));
}

bool read_target(FILE* inf, nameptr* flag, arrptr a, const tokentipe& name, ElementTarget* target) {
    next_token(inf, flag);
    Subscripts s;
    if (!evalcoords(inf, flag, ']', ',', &s)) return false;
    a = array_itself(a);
    *target = {a->name, a->time, 0};
    return find_place(a, s.i, s.j, s.two, name, &target->index);
}

static void element_is_zero(quolyptr* qp, quolyptr n) {
    if (*n == nullptr) quoly_set(0, n);
    *qp = n;
}

/// The element of the array itself, whose subscripts have been read: where its value is. `which`: see
/// note_uninitialized; nil: the name.
static void locate(FILE* inf, nameptr* flag, arrptr a, int64_t index, const char* which,
                   const tokentipe& name, quolyptr* qp, quolyptr n) {
    static quoly absent = nullptr;  // where an entry that is not there is found in front of an assignment
    if (a->shared) about_to_change(a);
    quolyptr slot = place_slot(a, index);
    if (at_char(':') && a != syst && assignment_follows(inf, flag)) {
        *qp = slot == nullptr ? &absent : slot;
        element_read = {*qp, {a->name, a->time, index}};
        return;
    }
    if (slot == nullptr) {
        element_is_zero(qp, n);
        return;
    }
    if (*slot == nullptr) {
        quoly_set(0, slot);
        which != nullptr ? note_uninitialized(which) : note_uninitialized_in(name);
    }
    *qp = slot;
}

void new_arretrieve(FILE* inf, tokentipe& name, nameptr* flag, quolyptr* qp, quolyptr n) {
    next_token(inf, flag);
    Subscripts s;
    arrptr a = nullptr;
    int64_t index;
    if (evalcoords(inf, flag, ']', ',', &s) && array_seek(name, &a)) {
        a = array_itself(a);
        if (!refuse_array_of_other_ring(a, name) && find_place(a, s.i, s.j, s.two, name, &index)) {
            locate(inf, flag, a, index, nullptr, name, qp, n);
            return;
        }
    }
    element_is_zero(qp, n);
}

void system_element(FILE* inf, nameptr* flag, quolyptr* qp, quolyptr n) {
    Subscripts s;
    int64_t index;
    if (syst == nullptr || syst->sizearr == 0) {
        error(Err::system_array_undefined);
    } else {
        next_token(inf, flag);
        if (evalcoords(inf, flag, ']', ',', &s) && !refuse_array_of_other_ring(syst, syst->name) &&
            find_place(syst, s.i, s.j, s.two, syst->name, &index)) {
            locate(inf, flag, syst, index, "[<]", syst->name, qp, n);
            return;
        }
    }
    element_is_zero(qp, n);
}

arrptr read_array_place(FILE* inf, nameptr* flag) {
    next_token(inf, flag);
    if (!expect(inf, flag, '[', Err::array_of_arrays_bracket)) return nullptr;
    int64_t i;
    if (!read_plain_integer(inf, flag, Err::array_of_arrays_index, &i)) return nullptr;
    if (!expect(inf, flag, ']', Err::array_of_arrays_close)) return nullptr;
    if (i < 0 || i >= k_array_places) return get_arr_arr(i);
    arrptr a = get_arr_arr(i);
    if (a == nullptr) error(Err::array_of_arrays_empty);
    return a;
}

bool refused_at_interrupt(const char* what, quolyptr* qp, quolyptr n) {
    if (interrupt_levels == 0) return false;
    printf("*** no %s at this level of interrupt\n", what);
    free_quoly(n);
    element_is_zero(qp, n);
    return true;
}

void element_at_place(FILE* inf, nameptr* flag, arrptr a, quolyptr* qp, quolyptr n) {
    ElementTarget target;
    if (refuse_array_of_other_ring(a, a->name) || !read_target(inf, flag, a, a->name, &target)) {
        element_is_zero(qp, n);
        return;
    }
    locate(inf, flag, a, target.index, "%", a->name, qp, n);
    if (*qp != element_read.at || !at_char(':')) refused_at_interrupt("array of arrays", qp, n);
}

void element_of_place(FILE* inf, nameptr* flag, quolyptr* qp, quolyptr n) {
    arrptr a = read_array_place(inf, flag);
    if (a != nullptr && at_char('[')) {
        element_at_place(inf, flag, a, qp, n);
        return;
    }
    if (a != nullptr) error(Err::array_of_arrays_bracket);
    element_is_zero(qp, n);
}
}  // namespace tolvex
