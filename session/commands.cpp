#include "session/commands.h"

#include "gcd/gcd_modes.h"
#include "gcd/gcd_stash.h"
#include "language/language_modes.h"
#include "language/parse.h"
#include "language/ports.h"
#include "language/tokens/look_ahead.h"
#include "language/tokens/scanner.h"
#include "matrix/matrix_modes.h"
#include "numbers/decimal_io.h"
#include "numbers/ring_switch.h"
#include "quoly/garbage.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_display.h"
#include "session/jumps.h"
#include "session/levels.h"
#include "session/listing.h"
#include "session/load.h"
#include "session/loop.h"
#include "session/mod_out.h"
#include "session/modulus.h"
#include "session/polyvars.h"
#include "session/questions.h"
#include "session/ring_list.h"
#include "session/save_file.h"
#include "session/session_modes.h"
#include "session/status.h"
#include "session/switch_arrays.h"
#include "session/switch_table.h"
#include "session/switches.h"
#include "storage/failure.h"
#include "storage/memory.h"
#include "storage/pool.h"
#include "storage/stash.h"

#include <cstdio>
#include <cstring>
#include <ctime>
namespace tolvex {
namespace {
/// A command under way. Its letter is the current token.
struct Command {
    FILE* inf;
    quolyptr n;
    nameptr* flag;
    bool stored() const { return *flag != nullptr; }  // it stands in a stored list
};
enum class After { read_next, stay };  // stay: the token behind the command is current already
struct CommandRow {
    const char* letter;
    const char* meaning;  // for the manual
    After (*run)(Command& c);
};
}  // namespace

// ---- leaving, levels -----------------------------------------------------------------------------------

static After quit(Command&) { jump_to_farewell(); }
static After stop(Command&) { panic_stop(); }

static After push_level(Command& c) {
    new_level();
    if (c.stored() || tt_flag) return After::read_next;
    tok_set(token, "@");
    return After::stay;
}

static After pop_level(Command&) {
    time_to_quit = 1;
    return After::read_next;
}

/// Leaving a function or a loop has a meaning in a stored list only.
static After leave_construct(Command& c, boolean* what) {
    if (c.stored()) {
        *what = 1;
    } else {
        printf("Warning. &%s ignored.\n", tok_text(token));
    }
    return After::read_next;
}
static After leave_loop(Command& c) { return leave_construct(c, &leave_flag); }
static After cycle_loop(Command& c) { return leave_construct(c, &cycle_flag); }
static After leave_function(Command& c) { return leave_construct(c, &exit_flag); }

// ---- settings with a dialogue of their own -------------------------------------------------------------

static After assignment_form(Command& c) {
    set_switch(c.inf, c.n, c.flag);
    return After::read_next;
}

/// `&p` and `&p(x, [a])`. The token behind a list is read after the question, as it is without one.
static After ground_ring(Command& c) {
    bool listed = sign_follows(c.inf, c.flag, '(');
    if (listed) {
        if (!ring_may_change()) return After::stay;
        next_token(c.inf, c.flag);
        if (c.stored()) {
            error(Err::ring_list_stored);
            return After::stay;
        }
        next_token(c.inf, c.flag);
        if (!read_ring_list(c.inf, c.flag, false)) return After::stay;
    }
    toggle_ground_ring(listed);
    return After::read_next;
}

static After polynomial_variables(Command&) {
    ask_polyvars();
    return After::read_next;
}

static After modding_out(Command&) {
    ask_mod_out();
    return After::read_next;
}

static After ask_prompt(Command&) {
    char line[k_prompt_length];
    ask_line(" Enter prompt:\n", line, sizeof line);
    set_prompt(line);
    return After::read_next;
}

static After ask_disp_size(Command&) {
    int32_t size;
    if (ask_number("Enter display size. \n", Err::number_expected, &size)) {
        printf("new display size: %2d\n", size);
        set_disp_size(size);
    }
    tok_set(token, "@");
    return After::stay;
}

static After toggle_addresser(Command& c) {
    const SwitchRow* row = find_set_switch("a");
    SwitchStore s = {row, 0, true, !c.stored(), 0};
    if (row->store(s)) leave_value(c.n, s.left);
    return After::read_next;
}

/// `&C+` and `&C-`: the stack of gcd stashing, on above 0.
static After gcd_stash_stack(Command& c) {
    next_token(c.inf, c.flag);
    const char* report;
    if (tok_is(token, "+")) {
        init_gcd_stash();
        report = lookupgcd > 0   ? " stashing on."
                 : lookupgcd < 0 ? " pushed, but stashing still off."
                                 : " stashing off.";
    } else if (tok_is(token, "-")) {
        pop_gcd_stash();
        report = lookupgcd > 0 ? " popped, but stashing remains in effect." : " stashing off.";
    } else {
        error(Err::stash_sign_expected);
        return After::stay;
    }
    if (!c.stored()) printf("%s\n", report);
    leave_value(c.n, lookupgcd);
    return After::read_next;
}

// ---- files and listings --------------------------------------------------------------------------------

/// `&f`, `&F`.
static After list_functions(Command& c) {
    listfuncs(c.inf, c.flag);
    return After::stay;
}

/// `&v;` and `&v:`.
static After list_variables(Command& c) {
    next_token(c.inf, c.flag);
    bool names_only = tok_is(token, ":");
    if (!names_only && !tok_is(token, ";") && !tok_is(token, k_end_token)) {
        error(Err::listing_terminator);
        return After::stay;
    }
    listvars(!names_only);
    return After::stay;
}

namespace {
/// What a question for the name of a file says.
struct NameQuestion {
    const char *text, *taken_back, *cut;  // cut: a name that is too long
};
constexpr NameQuestion input_question = {"Enter name of input file: \n", "*** Read cancelled\n",
                                         "*** Warning. Name is too int32_t.\n"};
constexpr NameQuestion output_question = {"Enter name of output file: \n", "*** Save cancelled\n",
                                          "*** Warning. Name is too long.\n"};
}  // namespace

/// The name that begins with the current token of the terminal: quoted, in an array of character codes, or
/// one token. False after an error.
static bool read_file_name(const NameQuestion& q, char* name) {
    nameptr terminal = nullptr;
    bool quoted = tok_is(token, "'");
    if (!quoted && !tok_is(token, "[")) {
        if (at_terminator()) {
            error(Err::file_name_missing);
            return false;
        }
        strcpy(name, tok_text(token));
        putchar('\n');
        return true;
    }
    if (!(quoted ? read_quoted(Input, &terminal, name, q.cut) : get_from_array(Input, &terminal, name)))
        return false;
    if (at_terminator()) return true;
    error(Err::not_terminated);
    return false;
}

/// Asks for the name of a file; "@" takes the command back: false then, and after an error.
static bool ask_file_name(const NameQuestion& q, char* name) {
    QuestionMark mark = open_question(q.text);
    nameptr terminal = nullptr;
    bool given = !tok_is(token, "@");
    if (given) {
        given = read_file_name(q, name);
    } else {
        fputs(q.taken_back, Output);
        next_token(Input, &terminal);
    }
    close_question(mark);
    return given;
}

/// `&r` runs the open file on or again; without one, and for `&R`, a name is asked for.
static After load_command(Command& c) {
    char name[k_text_length + 1];
    if (inpuf != nullptr && !tok_is(token, "R")) {
        load_again();
    } else if (ask_file_name(input_question, name)) {
        load_named(name, c.stored());
    }
    return After::read_next;
}

/// `&s` writes the session into the open file; without one, and for `&S`, a name is asked for.
static After save_command(Command& c) {
    char name[k_text_length + 1];
    if (outpuf != nullptr && !tok_is(token, "S")) {
        save_session();
    } else if (ask_file_name(output_question, name)) {
        save_named(name, c.stored());
    }
    return After::read_next;
}

/// `&x`: only a file has an end to be reached before its time.
static After end_load(Command&) {
    if (!tt_flag) done_load = 1;
    return After::read_next;
}

// ---- figures -------------------------------------------------------------------------------------------

static After clock_ticks(Command& c) {
    leave_value(c.n, static_cast<int64_t>(clock()) / 1000);
    return After::read_next;
}

static After memory_left(Command& c) {
    auto bytes = static_cast<int64_t>(memavail());
    if (lintmode && !c.stored()) printf("%lli\n", static_cast<long long>(bytes));
    leave_value(c.n, bytes);
    return After::read_next;
}

static constexpr int64_t k_records_unpolled = int64_t{1} << 14;

static void free_all_waiting() {
    while (free_waiting_quolys(k_records_unpolled)) poll_interrupt();
    while (free_waiting(k_records_unpolled)) poll_interrupt();
}

/// The counts of minors expansion stay 0 as long as no determinant has been expanded.
static After show_statistics(Command&) {
    free_all_waiting();
    printf(
        " memavail, minor memory, garbsize, minor prime, total branches, leaf count, stash nodes, hits: \n");
    printf("%llu  %llu  %lli  %d  %d  %d  %d  %d\n", static_cast<unsigned long long>(memavail()),
           static_cast<unsigned long long>(minor_memory), static_cast<long long>(garbsize()), minorprime,
           sp_total_cnt, sp_lowcnt, minor_total, purged_hits);
    return After::read_next;
}

static After show_settings(Command&) {
    global_dump();
    return After::read_next;
}

/// Gives the records of a free list back to the stash that they came from. Those that the start-up stock
/// added are more than the stash has handed out: so many stay on the list.
template <auto link, class R> static void empty_free_list(R*& head, stash_rec* stash) {
    for (int64_t k = 0; head != nullptr && stash->slugs_used > 0; k++) {
        poll_every<k_records_unpolled>(k);
        free_slug(stash, pool_pop<link>(head, stash));
#ifdef TOLVEX_CHECKED
        pool_counters<R>.live--;
#endif
    }
}

static After empty_free_lists(Command& c) {
    next_token(c.inf, c.flag);
    free_all_waiting();
    empty_free_list<&quolynode::next>(quolygarb, quolystash);
    empty_free_list<&polynode::next>(polygarb, polystash);
    if (!lintmode) {
        empty_free_list<&number::imag>(imhead, imagstash);
        empty_free_list<&numnode::next>(numhead, numstash);
    }
    return After::stay;
}

static After report_garbage(Command&) {
    free_all_waiting();
    garbage('g');
    return After::read_next;
}

// ---- commands with something behind them ---------------------------------------------------------------

/// `&_m(e)`: e outside the ground ring.
static After outside_ring(Command& c) {
    next_token(c.inf, c.flag);
    if (!tok_is(token, "(")) {
        error(Err::suspended_shape);
        return After::stay;
    }
    boolean modular;
    check_modular(&modular);
    next_token(c.inf, c.flag);
    parse(c.inf, c.n, c.flag);
    restore_modular(modular);
    if (modularmode) reduce_stored_words(c.n);
    Err fault = Err{};
    if (!tok_is(token, ")")) {
        fault = Err::close_paren_expected;
    } else {
        next_token(c.inf, c.flag);
        if (!at_terminator()) fault = Err::suspended_not_terminated;
    }
    if (fault != Err{}) {
        free_quoly(c.n);
        error(fault);
    }
    return After::stay;
}

static After read_polynomial(Command& c) {
    next_token(c.inf, c.flag);
    quoly_readin(c.inf, c.n, c.flag);
    return After::stay;
}

static After output_only(Command&) {
    error(Err::output_form_only);
    return After::read_next;
}

/// The display of a work array: nothing to show.
static After nothing(Command&) { return After::read_next; }

// ---- dispatch ------------------------------------------------------------------------------------------

static const CommandRow commands[] = {
    {"(", "the form `&(x = v)`: the switch x gets the value v", assignment_form},
    {"4", "displays the work array, if there is one", nothing},
    {">", "leaves the innermost loop; in a stored list only", leave_loop},
    {"@", "panic stop: back to level 1", stop},
    {"C", "`&C+`, `&C-`: the stack of gcd stashing", gcd_stash_stack},
    {"F", "as `&f`", list_functions},
    {"G", "reports how many records are free", report_garbage},
    {"J", "polynomial variables; asks for them", polynomial_variables},
    {"P", "modding out; asks for a polynomial", modding_out},
    {"M", "asks for the prompt: a line of at most 9 characters, a blank for none", ask_prompt},
    {"Q", "leaves the program", quit},
    {"R", "asks for the name of a file of statements and runs it", load_command},
    {"S", "asks for the name of the output file", save_command},
    {"T", "the processor time used", clock_ticks},
    {"]", "the next turn of the innermost loop; in a stored list only", cycle_loop},
    {"_G", "empties the lists of free records", empty_free_lists},
    {"_P", "opens a new command level", push_level},
    {"_m", "`&_m(e)`: the value of e outside the ground ring", outside_ring},
    {"_n", "reads a polynomial in the form of saved files", read_polynomial},
    {"_p", "leaves a command level above 1", pop_level},
    {"a", "the other array origin", toggle_addresser},
    {"d", "asks for the display size of decimal values", ask_disp_size},
    {"f",
     "`&f`: the functions; `&f,F`: function F in full; `&f*`: all in full; `&f<F`: the last control "
     "statement",
     list_functions},
    {"g", "shows the settings", show_settings},
    {"h", "the memory left, in bytes", memory_left},
    {"o", "in output statements only: `!(&o, x)`", output_only},
    {"j", "statistics of storage and of minors expansion", show_statistics},
    {"p",
     "ground ring: leaves modular mode, or asks for the modulus. `&p(x, [a])` converts only what is listed",
     ground_ring},
    {"q", "leaves the program", quit},
    {"r", "runs the open input file on, or from its beginning; asks for a file if none is open",
     load_command},
    {"s", "saves the session to the open output file; asks for a file if none is open", save_command},
    {"v", "`&v;`: the variables with their values, and the arrays; `&v:`: the names", list_variables},
    {"x", "ends the loading of a file", end_load},
    {"}", "leaves the function; in a stored list only", leave_function},
};

static void toggle(const SwitchRow& row, Command& c) {
    if (row.rational_only && lintmode) {
        error(Err::not_in_word_mode);
        return;
    }
    if (row.refuses != nullptr && row.refuses(!*row.at)) return;
    *row.at = !*row.at;
    if (!row.quiet_stored || !c.stored()) fputs(*row.at ? row.on : row.off, Output);
    if (row.after != nullptr) row.after();
    if (row.leaves_value) leave_value(c.n, *row.at);
}

static void ask_switch(const SwitchRow& row, Command& c) {
    SwitchStore s = {&row, 0, true, true, 0};
    if (ask_number(row.question, row.not_number, &s.value) && row.store(s)) leave_value(c.n, s.left);
}

/// Runs the command `letter`; false if there is none.
static bool run_letter(const char* letter, Command& c) {
    for (const CommandRow& row : commands) {
        if (strcmp(row.letter, letter) != 0) continue;
        if (row.run(c) == After::read_next) next_token(c.inf, c.flag);
        return true;
    }
    const SwitchRow* row = find_switch(letter);
    if (row == nullptr) return false;
    if (row->at != nullptr) {
        toggle(*row, c);
    } else {
        ask_switch(*row, c);
    }
    next_token(c.inf, c.flag);
    return true;
}

bool command_help(size_t k, const char** letter, const char** meaning) {
    if (k >= sizeof commands / sizeof commands[0]) return false;
    *letter = commands[k].letter;
    *meaning = commands[k].meaning;
    return true;
}

void run_command(FILE* inf, quolyptr n, nameptr* flag) {
    Command c = {inf, n, flag};
    char letter[4];
    next_token(inf, flag);
    bool second = tok_is(token, "_");
    if (second) next_token(inf, flag);
    if (strlen(tok_text(token)) > 1 && !tok_is(token, k_end_token)) {
        error(Err::command_too_long);
        return;
    }
    snprintf(letter, sizeof letter, "%s%c", second ? "_" : "", tok_char(token));
    if (!run_letter(letter, c)) error(Err::unknown_command);
}
}  // namespace tolvex
