#include "language/array_params.h"

#include "language/array_values.h"
#include "language/symbols.h"

#include <cstdio>
namespace tolvex {
/// The array of an argument behind its "[", up to the "]".
static arrptr array_of_argument(FILE* inf, nameptr* flag) {
    if (at_char('<')) {
        error(Err::system_array_not_deleted);
        return nullptr;
    }
    if (at_char('%')) return read_array_place(inf, flag);
    arrptr a = nullptr;
    tokentipe name = token;
    if (!array_seek(name, &a)) return nullptr;
    next_token(inf, flag);
    return a;
}

arrptr read_array_argument(FILE* inf, nameptr* flag, const tokentipe& parameter) {
    next_token(inf, flag);
    arrptr a = array_of_argument(inf, flag);
    if (a == nullptr || !expect(inf, flag, ']', Err::close_bracket_expected)) return nullptr;
    return new_alias(parameter, a);
}

bool read_element_argument(FILE* inf, nameptr* flag, tokentipe& name, ElementTarget* target, quolyptr value) {
    arrptr a = nullptr;
    if (!array_seek(name, &a) || refuse_array_of_other_ring(array_itself(a), name) ||
        !read_target(inf, flag, a, name, target))
        return false;
    a = array_of(*target);
    quolyptr slot = a == nullptr ? nullptr : place_slot(a, target->index);
    if (slot == nullptr) {
        error(Err::target_gone);
        return false;
    }
    if (*slot == nullptr) {
        quoly_set(0, slot);
        note_uninitialized_in(name);
    }
    quoly_assign(*slot, value);
    return true;
}

bool give_back_element(const ElementTarget& target, quolyptr value) {
    const arrnode* a = array_of(target);
    return a != nullptr && a->ring == modulus && store_element(target, value);
}

bool remove_alias(arrptr alias) {
    arrptr first = nullptr;
    fastestlookup(alias->name, &first);
    bool good = first == alias;
    if (!good)
        printf("*** Warning. On function termination, found an array with the same name as an \n"
               "       array parameter, namely: %s\n",
               tok_text(alias->name));
    unlink_array(alias);
    free_alias(alias);
    return good;
}
}  // namespace tolvex
