#include "session/switch_arrays.h"

#include "language/array_values.h"
#include "language/tokens/scanner.h"
#include "numbers/shape_num.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_basic.h"
#include "session/switches.h"
#include "storage/failure.h"
namespace tolvex {
/// "[a]", the "[" being current: the array itself, of the ring in force; nil after an error.
static arrptr read_array(FILE* inf, nameptr* flag) {
    next_token(inf, flag);
    tokentipe name = token;
    arrptr a = nullptr;
    if (!array_seek(name, &a)) return nullptr;
    next_token(inf, flag);
    if (!tok_is(token, "]")) {
        error(Err::close_bracket_expected);
        return nullptr;
    }
    next_token(inf, flag);
    a = array_itself(a);
    return refuse_array_of_other_ring(a, name) ? nullptr : a;
}

/// The element as a word, 0 if it has no value yet. False: it is no number, or no word.
static bool word_of_element(const arrnode* a, int64_t k, int32_t* word) {
    quolyptr slot = place_slot(a, k);
    *word = 0;
    if (slot == nullptr || *slot == nullptr) return true;
    if (!(*slot)->numb) return false;
    *word = big_quoly_convert_to_int(*slot);
    return *word != k_no_word;
}

bool get_from_array(FILE* inf, nameptr* flag, char* text) {
    constexpr int32_t k_greatest_code = 255;
    const arrnode* a = read_array(inf, flag);
    if (a == nullptr) return false;
    Err fault = a->sizearr > k_text_length ? Err::text_too_long : Err{};
    int64_t k = 0;
    for (; fault == Err{} && k < a->sizearr; k++) {
        int32_t code;
        if (!word_of_element(a, k, &code) || code < 1 || code > k_greatest_code) fault = Err::bad_file_name;
        text[k] = static_cast<char>(code);
    }
    if (fault != Err{}) {
        error(fault);
        return false;
    }
    text[k] = 0;
    return true;
}

bool get_cut_from_array(FILE* inf, nameptr* flag) {
    constexpr int32_t k_least_cutoff = 6, k_default_cutoff = 80;
    const arrnode* a = read_array(inf, flag);
    if (a == nullptr) return false;
    int32_t cutoff[k_levels];
    int64_t count = a->sizearr < number_polys ? a->sizearr : number_polys;
    for (int64_t k = 0; k < count; k++) {
        if (!word_of_element(a, k, &cutoff[k])) {
            error(Err::switch_not_number, "#");
            return false;
        }
        if (cutoff[k] < k_least_cutoff) cutoff[k] = k_default_cutoff;
    }
    if (!tok_is(token, ")")) {
        error(Err::switch_close_paren);
        return false;
    }
    int64_t k = 0;
    for (polypt v = polynames; v != nullptr && k < count; v = v->next) v->polycut = cutoff[k++];
    return true;
}
}  // namespace tolvex
