#include "language/integer_arrays.h"

#include "language/array_values.h"
#include "matrix/matrix_modes.h"
#include "numbers/ring_switch.h"
namespace tolvex {
/// [i] or [i, j]: ordinary integers in modular arithmetic too.
static bool word_subscripts(WordReader& r, Subscripts* s) {
    boolean was_modular = 0, saved = eval_state.bar_closes;
    if (modularmode) check_modular(&was_modular);
    eval_state.bar_closes = 0;
    word_step(r);
    s->i = word_expression(r);
    s->j = addresser;
    s->two = word_at(r, ',');
    if (s->two) {
        word_step(r);
        s->j = word_expression(r);
    }
    eval_state.bar_closes = saved;
    if (was_modular) restore_modular(was_modular);
    return word_expect(r, ']', Err::index_separator);
}

/// The array and the place that the name at the node and its subscripts stand for. False after an error.
static bool find_element(WordReader& r, nameptr node, arrptr* a, int64_t* index) {
    if (is_bound_element(node)) {
        *a = array_of(node->bound->element);
        *index = node->bound->element.index;
        if (*a != nullptr) {
            r.at = end_of_bound_element(node);
            word_step(r);
            give_back(r);
            return true;
        }
    }
    Subscripts s;
    if (!word_subscripts(r, &s)) return false;
    give_back(r);
    if (!array_seek(node->let, a)) return false;
    *a = array_itself(*a);
    return find_place(*a, s.i, s.j, s.two, node->let, index);
}

void word_element(WordReader& r, nameptr node, int32_t* value) {
    arrptr a = nullptr;
    int64_t index;
    *value = 0;
    if (!find_element(r, node, &a, &index) || refuse_array_of_other_ring(a, node->let)) return;
    if (a->shared) about_to_change(a);
    quolyptr slot = place_slot(a, index);
    bool empty = slot == nullptr || *slot == nullptr;
    if (word_at(r, ':')) {
        word_element_read = {node, r.at, {a->name, a->time, index}};
        if (!empty) word_of_value(*slot, value);
    } else if (slot != nullptr && empty) {
        quoly_set(0, slot);
        note_uninitialized_in(node->let);
    } else if (!empty && !word_of_value(*slot, value)) {
        error(Err::number_expected, tok_text(node->let));
    }
}

bool word_element_exists(const ElementTarget& target) {
    quolyptr at = location_of(target);
    return at != nullptr && *at != nullptr;
}

int32_t word_of_element(const ElementTarget& target) {
    quolyptr at = location_of(target);
    int32_t word = 0;
    if (at != nullptr && *at != nullptr) word_of_value(*at, &word);
    return word;
}

void write_word_element(const ElementTarget& target, int32_t word) {
    quolyptr slot = number_to_change(target);
    if (slot != nullptr) {
        value_of_word(word, slot);
        return;
    }
    quoly value = nullptr;
    value_of_word(word, &value);
    store_element(target, &value);
}
}  // namespace tolvex
