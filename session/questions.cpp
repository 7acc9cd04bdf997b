#include "session/questions.h"

#include "language/expre.h"
#include "language/language_modes.h"
#include "language/ports.h"
#include "language/tokens/scanner.h"
#include "numbers/num_compare.h"
#include "numbers/ring_switch.h"
#include "numbers/shape_num.h"
#include "quoly/quoly_basic.h"
#include "session/loop.h"
namespace tolvex {
static QuestionMark begin(const char* text) {
    QuestionMark mark = {tt_flag, leftover[0]};
    fputs(text, Output);
    do_prompts();
    tt_flag = 1;
    return mark;
}

QuestionMark open_question(const char* text) {
    QuestionMark mark = begin(text);
    read_first_token();
    return mark;
}

void close_question(QuestionMark mark) {
    tt_flag = mark.tt_flag;
    if (tt_flag) return;  // at the terminal what followed the command on its line is dropped
    leftover[0] = mark.leftover;
    leftover[1] = 0;
}

int32_t value_as_word(const quolynode* value) {
    if (value == nullptr || !value->numb) return k_no_word;
    int32_t word = big_quoly_convert_to_int(value);
    if (word != k_no_word) return word;
    return !lintmode && chain_sign(value->ncoef) < 0 ? -INT32_MAX + 1 : INT32_MAX;
}

bool ask_number(const char* text, Err not_number, int32_t* answer) {
    QuestionMark mark = open_question(text);
    boolean modular;
    check_modular(&modular);
    quoly value = nullptr;
    nameptr stream = nullptr;
    old_expre(Input, &value, &stream);
    *answer = value_as_word(value);
    free_quoly(&value);
    restore_modular(modular);
    bool ended = at_terminator();
    close_question(mark);
    if (!ended) {
        error(Err::not_terminated);
    } else if (*answer == k_no_word) {
        error(not_number);
    } else {
        return true;
    }
    return false;
}

FILE* open_answer(const char* text) {
    do_prompts();
    fputs(text, Output);
    tt_flag = 1;
    read_first_token();
    return Input;
}

void ask_line(const char* text, char* line, int32_t size) {
    QuestionMark mark = begin(text);
    int32_t n = 0;
    int c = await_character();
    for (; c != '\n' && c != EOF; c = peek_char(Input)) {
        read_char(Input);
        line_open = 1;
        if (n < size - 1) line[n++] = static_cast<char>(c);
    }
    if (c == '\n') line_open = 1;
    if (n > 0 && line[n - 1] == '\r') n--;  // the line came with CR LF
    line[n] = 0;
    close_question(mark);
}
}  // namespace tolvex
