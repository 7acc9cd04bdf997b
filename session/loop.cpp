#include "session/loop.h"

#include "language/array_display.h"
#include "language/language_modes.h"
#include "language/parse.h"
#include "language/tokens/scanner.h"
#include "numbers/display_modes.h"
#include "poly/poly.h"
#include "poly/poly_read.h"
#include "quoly/quoly_basic.h"
#include "quoly/quoly_display.h"
#include "session/jumps.h"
#include "session/levels.h"
#include "session/save_file.h"
#include "storage/audit.h"
#include "storage/failure.h"
#include "storage/interrupt.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
namespace tolvex {
// ---- time ----------------------------------------------------------------------------------------------

TimePair time_now() {
    // ticks are hundredths of a second, whatever the unit of clock()
    return {static_cast<int64_t>(time(nullptr)), static_cast<int64_t>(clock()) * 100 / CLOCKS_PER_SEC};
}

void charge_time(TimePair* since) {
    TimePair now = time_now();
    TimePair& off = time_off[time_level];
    since->seconds = maxx64(now.seconds - since->seconds - off.seconds, 0);
    since->ticks = maxx64(now.ticks - since->ticks - off.ticks, 0);
    off = {};
}

void write_time_line(const TimePair& spent) {
    auto t = static_cast<unsigned>(spent.seconds), c = static_cast<unsigned>(spent.ticks);
    unsigned h = t / 3600, m = t / 60 % 60, s = t % 60;
    unsigned cm = c / 6000, cs = c / 100 % 60;
    char fraction[16];
    snprintf(fraction, sizeof fraction, "%0.3f", c % 100 / 100.0);
    const char* digits = fraction + 2;
    if (h >= 1) {
        printf(" Elapsed real time: %u:%u:%u.  CPU time: %u:%u.%s\n", h, m, s, cm, cs, digits);
    } else if (m >= 1) {
        printf(" Elapsed real time: %u:%u.  CPU time: %u:%u.%s\n", m, s, cm, cs, digits);
    } else if (s < 5) {
        printf(" Elapsed CPU time: %u.%s\n", cs, digits);
    } else {
        printf(" Elapsed real time: %u.  CPU time: %u.%s\n", s, cs, digits);
    }
}

// ---- the input as the session reads it -----------------------------------------------------------------

/// True if a whole line of input has been read ahead, so that the next statement can be read without waiting.
/// Only then may the output wait: who sits before the screen sees everything before the program blocks.
static bool line_is_buffered() {
    if (reads_resumed_line()) return true;
#if defined(__GLIBC__)
    const char* from = Input->_IO_read_ptr;
    const char* to = Input->_IO_read_end;
    return from < to && memchr(from, '\n', static_cast<size_t>(to - from)) != nullptr;
#else
    return false;
#endif
}

static void flush_before_reading() {
    if (!line_is_buffered()) fflush(Output);
}

int await_character() {
    if (!line_is_buffered()) await_input(Input);
    return peek_char(Input);
}

void drop_open_line() {
    if (line_open) drop_line(Input);
    line_open = 0;
    leftover[0] = 0;
}

void read_first_token() {
    int c = await_character();
    for (; c == ' ' || c == '\t' || c == '\r'; c = peek_char(Input)) read_char(Input);
    if (c == EOF) jump_to_farewell();
    scanner(Input, &token, &zilch);
    line_open = 1;
}

bool at_terminator() {
    return tok_is(token, ";") || tok_is(token, ":") || tok_is(token, "@") || tok_is(token, k_end_token);
}

// ---- prompts -------------------------------------------------------------------------------------------

void write_prompt() {
    if (levelcount > 1) printf("%1d", levelcount);
    if (promptsize > 0) fputs(prompt, Output);
}

/// The terminal shows the prompt on the line that the user types, and a line that is sent back from the
/// screen has it in front: what is longer than one character is taken off each line, as far as the line goes.
static void drop_prompt_characters() {
    for (int32_t i = 1; i < promptsize; i++) {
        int c = await_character();
        if (c == '\n' || c == EOF) return;
        read_char(Input);
        line_open = 1;
    }
}

/// What stands on the line behind the terminator is the next statement; only a line that is used up is
/// dropped.
static void prompt_step() {
    leftover[0] = 0;
    write_prompt();
    flush_before_reading();
    int c = peek_char(Input);
    for (; c == ' ' || c == '\t' || c == '\r'; c = peek_char(Input)) read_char(Input);
    if (c != '\n') return;
    read_char(Input);
    line_open = 0;
    drop_prompt_characters();
}

void do_prompts() {
    write_prompt();
    if (promptsize < 1) fputs(prompt, Output);
    drop_open_line();
}

void enter_pushed_level() {
    history_clear();
    write_prompt();
    drop_open_line();
}

/// A place of a seekable input where a statement failed.
struct FailedPlace {
    long offset;
    int32_t failure;
};

/// Starts the input over. A place that fails a second time with the same number would fail for ever.
static void restart_input(int32_t failure) {
    constexpr int32_t k_places = 1024;
    static FailedPlace places[k_places];
    static int32_t count = 0;
    long offset = ftell(Input);
    bool again = count == k_places;
    for (int32_t i = 0; i < count && !again; i++)
        again = places[i].offset == offset && places[i].failure == failure;
    if (again) {
        printf("*** The input fails again at the same place. Giving up.\n");
        finish_output_file();
        fflush(Output);
        exit(1);
    }
    places[count++] = {offset, failure};
    rewind(Input);
    drop_resumed_line();
    line_open = 0;
    leftover[0] = 0;
}

void enter_level_1(int32_t failure) {
    putchar('\n');
    history_clear();
    if (failure != k_no_failure && ftell(Input) >= 0) {
        restart_input(failure);
    } else {
        drop_open_line();
    }
    write_prompt();
    drop_prompt_characters();
}

// ---- the leak audit of the checked build ---------------------------------------------------------------

#ifdef TOLVEX_CHECKED
static char audited[256];  // the statement, as the history ring has it

static void note_statement() {
    size_t n = 0;
    audited[0] = 0;
    for (nameptr p = start; finish != nullptr && n < sizeof audited - k_namelength - 1; p = p->next) {
        n += static_cast<size_t>(snprintf(audited + n, sizeof audited - n, "%s", tok_text(p->let)));
        if (p == finish) return;
    }
}

/// Nothing may be live that no root reaches. The environment can switch this off, since it costs a walk over
/// all values.
static void audit_statement() {
    static const char* mode = getenv("TOLVEX_AUDIT");
    if (mode == nullptr || strcmp(mode, "off") != 0) audit_compare(audited);
}
#else
static void note_statement() {}
static void audit_statement() {}
#endif

// ---- one statement -------------------------------------------------------------------------------------

/// Reads and runs one statement up to its terminator; *value: what it leaves, 0 if nothing.
static void run_one_statement(quolyptr value) {
    warn_cnt = 0;
    minus_warned = 0;
    read_first_token();
    clear_statement_counters();
    mytime[time_level] = time_now();
    run_statement(Input, value, &zilch);
    zilch = nullptr;
    charge_time(&mytime[time_level]);
    if (*value == nullptr) quoly_set(0, value);
    if (!at_terminator()) error(Err::not_terminated);
    note_statement();
    history_clear();
}

/// Shows the value as the terminator asks for it. A value always ends its line before anything else is
/// written.
static void show_value(const quolynode* value) {
    bool open = false;
    if (syst_dump && noisy && !tok_is(token, ":") && !tok_is(token, "@")) display_system_array();
    syst_dump = 0;
    if (extra_line) putchar('\n');
    if (!tok_is(token, ":")) {
        if (noisy && !tok_is(token, "@")) open = quoly_display(Output, 1, value);
        if (polynames == nullptr && noisy && extra_line) {
            putchar('\n');
            open = false;
        }
    }
    if (timerflag) {
        if (open) putchar('\n');
        write_time_line(mytime[time_level]);
        open = false;
    }
    if (extra_line || open) putchar('\n');
}

/// The rounds of level 1: the value goes on as the previous value.
static void run_level_1() {
    for (;;) {
        run_one_statement(&sysnum);
        show_value(sysnum);
        free_quoly(&prevnum);
        prevnum = sysnum;
        sysnum = nullptr;
        if (time_to_quit) {
            time_to_quit = 0;
            printf(" You must use \"&q\" to quit the highest level.\n");
        }
        audit_statement();
        prompt_step();
    }
}

/// The rounds of a pushed level: its values are forgotten, the statement below goes on with what it had.
static void run_pushed_level() {
    quoly value = nullptr;
    for (;;) {
        run_one_statement(&value);
        if (time_to_quit) break;
        show_value(value);
        free_quoly(&value);
        prompt_step();
    }
    time_to_quit = 0;
    free_quoly(&value);
}

void run_level() {
    if (levelcount == 1) run_level_1();
    run_pushed_level();
}
}  // namespace tolvex
