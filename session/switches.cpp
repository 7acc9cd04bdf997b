#include "session/switches.h"

#include "language/expre.h"
#include "language/language_modes.h"
#include "language/tokens/scanner.h"
#include "numbers/num_assign.h"
#include "numbers/residue.h"
#include "numbers/ring_switch.h"
#include "numbers/shape_num.h"
#include "quoly/quoly_basic.h"
#include "session/load.h"
#include "session/loop.h"
#include "session/mod_out.h"
#include "session/modulus.h"
#include "session/polyvars.h"
#include "session/questions.h"
#include "session/ring_list.h"
#include "session/save_file.h"
#include "session/session_modes.h"
#include "session/switch_arrays.h"
#include "session/switch_table.h"
#include "storage/failure.h"
#include "storage/progress.h"

#include <cstdio>
#include <cstring>
namespace tolvex {
void leave_value(quolyptr n, int64_t v) {
    free_quoly(n);
    init_quoly_node(n);
    if (modularmode) {
        (*n)->ncoef->lint = residue_of_int(v);
    } else {
        setvalue_any(v, (*n)->ncoef);
    }
}

// ---- texts ---------------------------------------------------------------------------------------------

bool read_quoted(FILE* inf, nameptr* flag, char* text, const char* cut) {
    int32_t n = 0;
    bool too_long = false;
    Err fault = Err{};
    while (fault == Err{}) {
        boolean line_end = 0;
        if (*flag == nullptr && at_end(inf)) {
            fault = Err::end_of_file_inside;
            break;
        }
        dumbscanner(inf, &token, flag, &line_end);
        if (tok_is(token, "'")) break;
        if (line_end || tok_is(token, k_end_token)) {
            if (line_end && tt_flag && *flag == nullptr) line_open = 0;  // its line feed has been taken
            fault = Err::bad_file_name;
        } else if (n == k_text_length) {
            too_long = true;
            if (cut == nullptr) fault = Err::text_too_long;
        } else {
            text[n++] = static_cast<char>(tok_char(token));
        }
    }
    text[n] = 0;
    if (fault != Err{}) {
        error(fault);
        return false;
    }
    if (too_long) fputs(cut, Output);
    next_token(inf, flag);
    return true;
}

void set_prompt(const char* text) {
    if (strlen(text) > k_prompt_length) printf("*** Warning.  prompt name truncated to 10 characters.\n");
    if (strcmp(text, " ") == 0) {
        strcpy(prompt, "\r");
        promptsize = 0;
        printf(" Prompt now: <cr>\n");
        return;
    }
    snprintf(prompt, sizeof prompt, "%.*s", k_prompt_length, *text != 0 ? text : " ");
    promptsize = static_cast<int16_t>(strlen(prompt));
    printf(" Prompt now:%s\n", prompt);
}

/// `&(M = text)`, and the names of files; the first token of the text is current.
static void set_text_form(FILE* inf, nameptr* flag, const char* letter) {
    char text[k_text_length + 1];
    if (tok_is(token, "'")) {
        if (!read_quoted(inf, flag, text)) return;
    } else if (tok_is(token, "[")) {
        if (!get_from_array(inf, flag, text)) return;
    } else {
        strcpy(text, tok_text(token));
        next_token(inf, flag);
    }
    bool names_file = strcmp(letter, "M") != 0;
    if (!tok_is(token, ")")) {
        error(Err::switch_close_paren);
    } else if (names_file && strcmp(text, " ") == 0) {
        error(Err::bad_file_name);
    } else if (strcmp(letter, "R") == 0) {
        load_named(text, *flag != nullptr);
    } else if (strcmp(letter, "S") == 0) {
        save_named(text, *flag != nullptr);
    } else {
        set_prompt(text);
    }
}

// ---- numbers -------------------------------------------------------------------------------------------

namespace {
/// One form `&(x = v)` under way.
struct SwitchForm {
    FILE* inf;
    quolyptr n;
    nameptr* flag;
    char letter[4];        // "V", "_s"
    const SwitchRow* row;  // nil: the letter is none of the table
};
}  // namespace

/// Reads the letter; the token behind it is current then. False after an error.
static bool read_letter(SwitchForm& form) {
    next_token(form.inf, form.flag);
    bool second = tok_is(token, "_");
    if (second) next_token(form.inf, form.flag);
    if (strlen(tok_text(token)) > 1) {
        error(Err::switch_unknown);
        return false;
    }
    snprintf(form.letter, sizeof form.letter, "%s%c", second ? "_" : "", tok_char(token));
    form.row = find_set_switch(form.letter);
    next_token(form.inf, form.flag);
    return true;
}

/// Evaluates the value outside the ground ring and takes its word; the token behind it is current then. False
/// after an error.
static bool read_number(SwitchForm& form, int32_t* v) {
    boolean modular;
    quoly value = nullptr;
    check_modular(&modular);
    old_expre(form.inf, &value, form.flag);
    bool number = value != nullptr && value->numb;
    *v = value_as_word(value);
    free_quoly(&value);
    restore_modular(modular);
    bool may_be_negative = strcmp(form.letter, "D") == 0;
    if (!number) {
        bool own = form.row != nullptr && form.row->set_not_number != Err{};
        error(own ? form.row->set_not_number : Err::switch_not_number, form.letter);
    } else if (*v < 0 && !may_be_negative) {
        error(Err::switch_negative);
    } else {
        return true;
    }
    return false;
}

/// Reports are for who sits at the terminal; what runs from a file or a stored list is quiet.
static bool is_loud(const nameptr* flag) { return verbose || (*flag == nullptr && tt_flag); }

/// Stores v in a Boolean switch.
static void set_boolean(const SwitchRow& row, int32_t v) {
    if (row.rational_only && lintmode) {
        error(Err::not_in_word_mode);
        return;
    }
    boolean fresh = v > 0;
    if (*row.at == fresh) {
        printf(" Already had that value; no change%s%s.\n", *row.unchanged != 0 ? " in " : "", row.unchanged);
        return;
    }
    if (row.refuses != nullptr && row.refuses(fresh)) return;
    *row.at = fresh;
    const char* on = row.set_on != nullptr ? row.set_on : row.on;
    const char* off = row.set_off != nullptr ? row.set_off : row.off;
    fputs(fresh ? on : off, Output);
    if (row.after != nullptr) row.after();
}

/// `&(p = v)`, `&(p = _i)` and both with a list; the first token of the value is current.
static void set_ring_form(SwitchForm& form) {
    bool rational = tok_is(token, "_");
    int32_t v = 0;
    if (rational) {
        next_token(form.inf, form.flag);
        if (!tok_is(token, "i")) {
            error(Err::bad_modulus);
            return;
        }
        next_token(form.inf, form.flag);
    } else if (!read_number(form, &v)) {
        return;
    }
    bool listed = tok_is(token, ":");
    if (listed) {
        if (!ring_may_change()) return;
        next_token(form.inf, form.flag);
        if (!read_ring_list(form.inf, form.flag, true)) return;
    } else if (!tok_is(token, ")")) {
        error(Err::switch_close_paren);
        return;
    }
    set_ground_ring(v, rational, is_loud(form.flag), listed);
}

/// All other letters; the first token of the value is current.
static void set_number_form(SwitchForm& form) {
    if (tok_is(token, "'")) {
        error(Err::switch_not_text);
        return;
    }
    int32_t v;
    if (!read_number(form, &v)) return;
    Err fault = Err{};
    if (!tok_is(token, ")")) {
        fault = Err::switch_close_paren;
    } else if (v > 1 && (form.row == nullptr || !form.row->wide)) {
        fault = Err::switch_value_too_large;
    }
    if (fault != Err{}) {
        error(fault);
        return;
    }
    if (form.row == nullptr) {
        error(Err::switch_unknown, form.letter);
        return;
    }
    if (form.row->at != nullptr) {
        set_boolean(*form.row, v);
    } else {
        SwitchStore s = {form.row, v, false, is_loud(form.flag), 0};
        if (!form.row->store(s)) return;
    }
    leave_value(form.n, v);
}

/// `&(J = ...)` and `&(J > ...)`; the sign is current.
static void set_polyvars_form(SwitchForm& form) {
    bool at_end = tok_is(token, ">");
    next_token(form.inf, form.flag);
    attach_poly(form.inf, form.flag, at_end, false);
}

void set_switch(FILE* inf, quolyptr n, nameptr* flag) {
    SwitchForm form = {inf, n, flag, "", nullptr};
    if (!read_letter(form)) return;
    bool polyvars = strcmp(form.letter, "J") == 0;
    if (!tok_is(token, "=") && !(polyvars && tok_is(token, ">"))) {
        error(Err::equals_expected);
        return;
    }
    if (polyvars) {
        set_polyvars_form(form);
        return;
    }
    next_token(inf, flag);
    if (strcmp(form.letter, "M") == 0 || strcmp(form.letter, "R") == 0 || strcmp(form.letter, "S") == 0) {
        set_text_form(inf, flag, form.letter);
    } else if (strcmp(form.letter, "P") == 0) {
        set_mod_out(inf, flag);
    } else if (strcmp(form.letter, "p") == 0) {
        set_ring_form(form);
    } else if (strcmp(form.letter, "#") == 0 && tok_is(token, "[")) {
        get_cut_from_array(inf, flag);
    } else {
        set_number_form(form);
    }
}
}  // namespace tolvex
