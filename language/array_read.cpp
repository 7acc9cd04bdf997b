#include "language/array_read.h"

#include "language/array_elements.h"
#include "language/array_statement.h"
#include "language/array_values.h"
#include "language/ports.h"
#include "language/write_out.h"

#include <cinttypes>
namespace tolvex {
/// True if the token may end an answer.
static bool answer_ends() { return at_char(';') || at_char(':') || at_char('@'); }

// ---- elements ------------------------------------------------------------------------------------------

/// Asks for the element; "@" leaves it as it is.
static void ask_element(const ElementTarget& target, const char* text, quolyptr n) {
    nameptr from_terminal = nullptr;
    FILE* terminal = open_answer(text);
    if (at_char('@')) return;
    old_expre(terminal, n, &from_terminal);
    if (!answer_ends()) {
        error(Err::not_terminated);
        set_zero(n);
        return;
    }
    quoly value = nullptr;
    quoly_assign(*n, &value);
    store_element(target, &value);
}

void read_array_element(FILE* inf, quolyptr n, nameptr* flag, tokentipe& name) {
    Subscripts s;
    arrptr a = nullptr;
    ElementTarget target;
    next_token(inf, flag);
    bool good = evalcoords(inf, flag, ']', ',', &s) && array_seek(name, &a);
    if (good) {
        a = array_itself(a);
        target = {a->name, a->time, 0};
        good = find_place(a, s.i, s.j, s.two, name, &target.index);
    }
    if (good && a->spar != nullptr) {
        error(Err::sparse_not_allowed, tok_text(name));
        good = false;
    }
    if (good) {
        char text[k_namelength + 64];
        if (s.two)
            snprintf(text, sizeof text, "%s[%" PRId64 ",%" PRId64 "] := ", tok_text(name), s.i, s.j);
        else
            snprintf(text, sizeof text, "%s[%" PRId64 "] := ", tok_text(name), s.i);
        AnswerMark mark = begin_answer();
        ask_element(target, text, n);
        end_answer(mark);
    }
    if (*n == nullptr || *flag != nullptr) set_zero(n);
}

// ---- whole arrays --------------------------------------------------------------------------------------

/// The values of the answer go to the elements in order. In brackets, if it begins with "[".
static void ask_array(arrptr a, const tokentipe& name, quolyptr n) {
    char text[k_namelength + 16];
    snprintf(text, sizeof text, "[%s] := ", tok_text(name));
    nameptr from_terminal = nullptr;
    ElementTarget target = {a->name, a->time, 0};
    int64_t size = a->sizearr;
    FILE* terminal = open_answer(text);
    if (at_char('[')) next_token(terminal, &from_terminal);
    while (!answer_ends() && !at_char(']')) {
        free_quoly(n);
        old_expre(terminal, n, &from_terminal);
        if (target.index < size && !store_element(target, n)) return;
        target.index++;
        if (at_char(',')) {
            next_token(terminal, &from_terminal);
        } else if (!answer_ends() && !at_char(']')) {
            error(Err::element_separator);
            return;
        }
    }
}

/// `[x]:char` factor: [x] becomes a matrix with the elements of the factor.
static void array_from_factor(FILE* inf, nameptr* flag, tokentipe& name) {
    next_token(inf, flag);
    if (!tok_is(token, "char")) {
        error(Err::assignment_form);
        return;
    }
    next_token(inf, flag);
    ArrReader r = {inf, flag, {}, false};
    ArrOperand v;
    if (!begin_operand(v)) return;
    arr_fact(r, v);
    arrptr named = nullptr;
    fastestlookup(name, &named);
    assign_whole(name, named, v);
    end_operand(v);
}

void read_whole_array(FILE* inf, quolyptr n, nameptr* flag) {
    next_token(inf, flag);
    tokentipe name = token;
    arrptr a = nullptr;
    next_token(inf, flag);
    if (is_lower(tok_char(name)) && at_char('[')) {
        read_array_element(inf, n, flag, name);
        expect(inf, flag, ']', Err::close_bracket_expected);
        return;
    }
    bool good = expect(inf, flag, ']', Err::close_bracket_expected);
    if (good && at_char(':') && is_lower(tok_char(name))) {
        array_from_factor(inf, flag, name);
    } else if (good && array_seek(name, &a)) {
        a = array_itself(a);
        if (a->spar != nullptr) {
            error(Err::sparse_not_allowed, tok_text(name));
        } else if (!refuse_array_of_other_ring(a, name)) {
            AnswerMark mark = begin_answer();
            ask_array(a, name, n);
            end_answer(mark);
        }
    }
    set_zero(n);
}
}  // namespace tolvex
