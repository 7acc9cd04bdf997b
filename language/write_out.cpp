#include "language/write_out.h"

#include "language/array_display.h"
#include "language/array_expre.h"
#include "language/array_read.h"
#include "language/evaluator.h"
#include "language/language_modes.h"
#include "language/ports.h"
#include "language/symbols.h"
#include "poly/poly_vars.h"
#include "quoly/quoly_display.h"

#include <cstdlib>
namespace tolvex {
// ---- output --------------------------------------------------------------------------------------------

static constexpr int32_t k_text_limit = 255;  // characters of a text that are kept, and the widest field

/// Where an output goes. In the output file lines are not broken by marks and nothing is shortened.
struct Sink {
    FILE* file;
    boolean terminal;
};

/// What ":" says about an item.
struct Suffix {
    bool given;      // a width, or "char"
    bool character;  // the value is the code of a byte
    int32_t width;
};

static void fill(const Sink& out, int32_t width, int32_t written) {
    for (; written < width; written++) putc_unlocked(' ', out.file);
}

static int32_t read_width(FILE* inf, nameptr* flag) {
    int32_t width = read_plain_word(inf, flag, Err::number_expected, true);
    return width < 0 ? 0 : minn(width, k_text_limit);
}

static Suffix read_suffix(FILE* inf, nameptr* flag) {
    Suffix s = {};
    if (!at_char(':')) return s;
    s.given = true;
    next_token(inf, flag);
    if (!tok_is(token, "char")) {
        s.width = read_width(inf, flag);
        return s;
    }
    s.character = true;
    next_token(inf, flag);
    if (at_char(':')) {
        next_token(inf, flag);
        s.width = read_width(inf, flag);
    }
    return s;
}

/// 'text': the opening quote is the current token.
static void handle_quote(FILE* inf, nameptr* flag, const Sink& out) {
    char text[k_text_limit + 1];
    int32_t length = 0;
    boolean eoln = 0;
    for (;;) {
        dumbscanner(inf, &token, flag, &eoln);
        if (at_char('\'') || tok_is(token, k_end_token)) break;
        if (*flag == nullptr && at_char(';') && at_end(inf)) {
            error(Err::end_of_file_inside);
            break;
        }
        if (length < k_text_limit) text[length++] = static_cast<char>(text_character(token, *flag, eoln));
    }
    next_token(inf, flag);
    Suffix s = read_suffix(inf, flag);
    fwrite(text, 1, static_cast<size_t>(length), out.file);
    fill(out, s.width, length);
    if (length > 0 || s.width > 0) output_open = s.width > length || text[length - 1] != '\n';
}

/// A number 1 to 255 as that byte, everything else as "?".
static void write_character(const quolynode* q, const Sink& out) {
    int32_t code = q->numb ? big_quoly_convert_to_int(q) : 0;
    putc_unlocked(code >= 1 && code <= k_text_limit ? code : '?', out.file);
}

namespace {
/// A value on its way into a field. Displays have safe points: the list is what a panic stop gives back.
struct OpenField {
    FILE* file;
    char* text;
    size_t length;
    OpenField* below;
};
OpenField* open_fields = nullptr;  // innermost first
}  // namespace

void close_open_fields() {
    for (; open_fields != nullptr; open_fields = open_fields->below) {
        fclose(open_fields->file);
        free(open_fields->text);
    }
}

/// A value that is followed by a width: no blank in front, blanks behind it.
static void write_in_field(const quolynode* q, int32_t width, const Sink& out) {
    OpenField field = {nullptr, nullptr, 0, open_fields};
    field.file = open_memstream(&field.text, &field.length);
    if (field.file == nullptr) {
        quoly_display(out.file, out.terminal, q);
        return;
    }
    open_fields = &field;
    quoly_display(field.file, out.terminal, q);
    open_fields = field.below;
    fclose(field.file);
    const char* shown = field.text[0] == ' ' ? field.text + 1 : field.text;
    fputs(shown, out.file);
    size_t n = strlen(shown);
    fill(out, width, n > k_text_limit ? width : static_cast<int32_t>(n));
    free(field.text);
}

static void write_value(const quolynode* q, const Suffix& s, const Sink& out) {
    if (s.character) {
        write_character(q, out);
        fill(out, s.width, 1);
    } else if (s.given) {
        write_in_field(q, s.width, out);
    } else {
        quoly_display(out.file, out.terminal, q);
    }
}

/// An array in brackets: `[a]`, `[a[..]]`, `[%[k]]`, `[<]`; in a list with what ":" says about it.
static void write_array(FILE* inf, nameptr* flag, const Sink& out, bool in_list) {
    ArrReader r = {inf, flag, {}, false};
    ArrOperand v;
    if (!begin_operand(v)) return;
    bracket_factor(r, v);
    Suffix s = {};
    if (in_list) s = read_suffix(inf, flag);
    if (output_open && out.terminal && !s.character && !is_scalar(v)) putchar('\n');
    if (is_scalar(v))
        write_value(v.n, s, out);
    else if (s.character)
        arrdisplay_characters(out.file, v, s.width);
    else
        arrdisplay(out.file, v, s.given ? s.width : k_element_width);
    output_open = s.character || is_scalar(v);
    end_operand(v);
}

/// One item of a list: a text, or an expression, which is shown where it lives for "^x".
static void one_write_out(FILE* inf, nameptr* flag, const Sink& out) {
    if (at_char('\'')) {
        handle_quote(inf, flag, out);
        return;
    }
    if (at_char('[')) {
        write_array(inf, flag, out, true);
        return;
    }
    if (at_char(';') || tok_is(token, k_end_token)) {
        error(Err::output_not_closed, ";");
        return;
    }
    if (at_char('^')) next_token(inf, flag);
    Value v;
    read_expression(inf, &v, flag);
    hold(&v);
    Suffix s = read_suffix(inf, flag);
    write_value(value_of(&v), s, out);
    output_open = 1;
    let_go(&v);
    release(&v);
}

/// "&o" in front of a list sends it to the output file; "," may stand behind it. False after an error.
static bool to_output_file(FILE* inf, nameptr* flag, Sink* out) {
    next_token(inf, flag);
    Err fault = !tok_is(token, "o") ? Err::not_the_output_file
                : outpuf == nullptr ? Err::no_output_file
                                    : Err{};
    if (fault != Err{}) {
        error(fault);
        return false;
    }
    *out = {outpuf, 0};
    next_token(inf, flag);
    if (at_char(',')) next_token(inf, flag);
    return true;
}

static void write_list(FILE* inf, nameptr* flag) {
    Sink out = {stdout, 1};
    next_token(inf, flag);
    if (at_char('&') && !to_output_file(inf, flag, &out)) return;
    one_write_out(inf, flag, out);
    while (at_char(',')) {
        next_token(inf, flag);
        one_write_out(inf, flag, out);
    }
    if (at_char(';') || tok_is(token, k_end_token))
        error(Err::output_not_closed, ";");
    else
        expect(inf, flag, ')', Err::output_separator);
}

void write_out(FILE* inf, quolyptr n, nameptr* flag) {
    next_token(inf, flag);
    bool flush = at_char('!');
    if (flush) next_token(inf, flag);
    if (at_char(';') || tok_is(token, k_end_token)) {
        putchar('\n');
        output_open = 0;
    } else if (at_char('(')) {
        write_list(inf, flag);
    } else if (at_char('[')) {
        write_array(inf, flag, {stdout, 1}, false);
    } else if (at_char('\'')) {
        handle_quote(inf, flag, {stdout, 1});
    } else {
        Value v;
        read_factor(inf, &v, flag);
        hold(&v);  // an interrupt of the display may bring a new value of the variable
        quoly_display(stdout, 1, value_of(&v));
        output_open = 1;
        let_go(&v);
        release(&v);
    }
    if (flush) fflush(stdout);
    quoly_set(0, n);
}

// ---- reading -------------------------------------------------------------------------------------------

AnswerMark begin_answer() { return {token, tt_flag, leftover[0]}; }

void end_answer(const AnswerMark& mark) {
    token = mark.token;
    tt_flag = mark.tt_flag;
    leftover[0] = mark.tt_flag ? 0 : mark.leftover;
    leftover[1] = 0;
}

/// The answer to the question for a variable; "@" leaves it as it is.
static void read_answer(tokentipe& name, quolyptr n) {
    char text[k_namelength + 8];
    snprintf(text, sizeof text, "%s := ", tok_text(name));
    nameptr from_terminal = nullptr;
    FILE* terminal = open_answer(text);
    if (at_char('@')) {
        quoly_set(0, n);
        return;
    }
    old_expre(terminal, n, &from_terminal);
    if (!at_char(';') && !at_char(':') && !at_char('@')) {
        error(Err::not_terminated);
        set_zero(n);
        return;
    }
    quoly value = nullptr;
    quoly_assign(*n, &value);
    varptr p = nullptr;
    insert_var(name, value, &p);
}

void read_in(FILE* inf, quolyptr n, nameptr* flag) {
    next_token(inf, flag);
    if (at_char('[')) {
        read_whole_array(inf, n, flag);
        return;
    }
    tokentipe name = token;
    if (!is_lower(tok_char(name)) || (number_polys > 0 && its_a_polyname(name) != 0)) {
        error(is_lower(tok_char(name)) ? Err::polyvar_as_name : Err::question_needs_variable, tok_text(name));
        quoly_set(0, n);
        return;
    }
    next_token(inf, flag);
    if (at_char('[')) {
        read_array_element(inf, n, flag, name);
        return;
    }
    AnswerMark mark = begin_answer();
    read_answer(name, n);
    end_answer(mark);
    if (*flag != nullptr) set_zero(n);
}
}  // namespace tolvex
