#include "session/levels.h"

#include "field/field_modes.h"
#include "field/modding.h"
#include "gcd/gcd_modes.h"
#include "gcd/gcd_stash.h"
#include "language/functions.h"
#include "language/language_modes.h"
#include "language/ports.h"
#include "language/tokens/scanner.h"
#include "language/write_out.h"
#include "numbers/data_files.h"
#include "numbers/ring_switch.h"
#include "poly/poly.h"
#include "poly/poly_modes.h"
#include "poly/poly_read.h"
#include "quoly/quoly_mult.h"
#include "session/jumps.h"
#include "session/listing.h"
#include "session/load.h"
#include "session/loop.h"
#include "session/messages.h"
#include "session/modulus.h"
#include "session/plain_display.h"
#include "session/save_file.h"
#include "session/session_modes.h"
#include "session/startup.h"
#include "session/value_images.h"
#include "storage/audit.h"
#include "storage/interrupt.h"
#include "storage/interrupt_probe.h"
#include "storage/memory.h"
#include "storage/progress.h"
#include "storage/scratch.h"

#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
namespace tolvex {
// Numbers of failures beside those of the message table, as enter_level_1 tells them apart.
static constexpr int32_t k_panic_stop = 0;
static constexpr int32_t k_internal_fault = -2;

/// The counters that belong to one statement.
struct StatementCounters {
    GcdCounters gcd;
    int32_t uninit;
    boolean minus_warned;
    bool reads_modding;  // a modding polynomial is being read in free variables
};

static StatementCounters save_counters() {
    StatementCounters s = {gcd_counters_save(), uninit, minus_warned, modding_held != 0};
    gcd_counters_push();
    resume_modding();
    return s;
}

// The level may have moved the counter of the gcd stash, unless images had set it aside.
static void restore_counters(const StatementCounters& s) {
    int16_t lookup = lookupgcd;
    gcd_counters_restore(s.gcd);
    if (s.gcd.lookup >= 0) lookupgcd = lookup;
    uninit = s.uninit;
    minus_warned = s.minus_warned;
    if (s.reads_modding) suspend_modding();
}

/// Variables and the form of residues that a display had put in force give way to the user's.
static void back_to_user_names() {
    end_plain_residues();
    if (eval_state.user_names == nullptr) return;
    polynames = eval_state.user_names;
    do_line_sup = eval_state.user_line_sup;
    eval_state.user_names = nullptr;
}

void clear_statement_counters() {
    gcd_counters_reset();
    uninit = 0;
    minus_warned = 0;
    output_open = 0;
}

// ---- lines of interrupted statements -------------------------------------------------------------------

/// The rest of the line of an interrupted statement, its line feed included: the level reads lines of its own
/// meanwhile.
struct LineRest {
    char* text;
    size_t length;
    char leftover;
};
static LineRest line_rests[k_highest_level + 1] = {};  // by the level of the statement

/// Takes the rest of the open line off the input, so that the statement can go on with it afterwards. A
/// statement that waits for its next line has no rest.
static void take_line_rest() {
    LineRest rest = {nullptr, 0, leftover[0]};
    size_t room = 0;
    int c = line_start_awaited ? '\n' : 0;
    line_start_awaited = 0;
    while (c != '\n' && (c = peek_char(Input)) != EOF) {
        read_char(Input);
        if (rest.length == room) {
            room = room == 0 ? 256 : 2 * room;
            auto* wider = static_cast<char*>(checked_malloc(room));
            if (rest.length > 0) memcpy(wider, rest.text, rest.length);
            free(rest.text);
            rest.text = wider;
        }
        rest.text[rest.length++] = static_cast<char>(c);
    }
    line_open = 0;
    line_rests[levelcount] = rest;
}

static void give_line_rest() {
    LineRest rest = line_rests[levelcount];
    line_rests[levelcount] = {};
    drop_open_line();
    leftover[0] = rest.leftover;
    leftover[1] = 0;
    if (rest.length > 0) resume_line(Input, rest.text, rest.length);
    line_open = 1;
}

static void drop_line_rests() {
    for (LineRest& rest : line_rests) {
        free(rest.text);
        rest = {};
    }
}

// ---- the way back to level 1 ---------------------------------------------------------------------------

/// Puts in order what the statements of all levels may have left half done, and goes to the prompt of
/// level 1. Values that only skipped frames held are lost to the pools; the audit takes what is live now as
/// its base.
[[noreturn]] static void leave_for_level_1(int32_t failure) {
    interrupts_held = 1;  // none finds a session half put in order
    eval_state.held = nullptr;
    pop_calls();
    bool suspended = mod_is_changed > 0;
    ring_unwind();
    quoly none = nullptr;
    if (suspended && modularmode) reduce_stored_words(&none);
    integerflag = 0;
    if (modding_lifted > 0) modding_exchange();
    release_images();
    scratch_release({nullptr, 0});
    close_open_fields();
    drop_line_rests();
    close_startup();
    forget_loads();
    forget_image();
    gcd_counters_clear();
    resume_modding();
    clear_statement_counters();
    dumpitt_length = dumpitt_level = 0;
    tt_flag = 1;
    back_to_user_names();
    eval_state = {};
    forget_running_statements();
    set_statement_aside();
    syst_dump = 0;
    interrupt_levels = 0;
    levelcount = 1;
    quotient_by_zero = 1;
    time_level = 1;
    for (TimePair& off : time_off) off = {};
    time_to_quit = 0;
    interrupts_held = 0;
    tok_set(token, "");
    zilch = nullptr;
    sysnum = nullptr;
    audit_rebase();
    jump_to_level_1(failure);
}

// ---- reports -------------------------------------------------------------------------------------------

/// The statement as far as it has been read, for what was typed.
static void report_place() {
    if (tt_flag && finish != nullptr) {
        printf("*** Error occurred at this point:\n");
        history_print();
        if (statcount > 0) putchar('\n');
    }
    history_clear();
}

/// Functions that run, and the stored statement under way. True if the names of functions leave the line
/// open.
static bool report_trail() {
    bool open = report_calls();
    if (!report_statements()) return open;
    if (extra_line) putchar('\n');
    return false;
}

/// The trail in front of the prompt of a new level, which stands on a line of its own.
static void report_trail_of_level() {
    if (report_trail()) putchar('\n');
}

static void report_error(int32_t k, const char* text) {
    if (extra_line) putchar('\n');
    printf("*** Inappropriate symbol: %s\n", shown_token(text));
    out_err_mess(k);
    if (k == static_cast<int32_t>(Err::array_has_parameter))
        printf("that you have just deleted.  Any reference to this parameter \n"
               "%s may crash Tolvex. There may be other such dangling array parameters.\n",
               shown_token(text));
    report_definition(static_cast<Err>(k));
    report_load_place();
    report_place();
}

static void open_level();

void error(Err code, const char* text) {
    auto k = static_cast<int32_t>(code);
    if (text == nullptr) text = tok_text(token);
    // Above level 1 somebody looks around in the middle of a computation: the two commonest slips stop
    // nothing.
    if (levelcount > 1 && (code == Err::undefined_variable || code == Err::division_by_zero)) {
        if (extra_line) putchar('\n');
        warning(code, text);
        history_clear();
        return;
    }
    report_error(k, text);
    if (errorpush && (statcount >= 1 || levelcount > 1)) {
        report_trail_of_level();
        open_level();
        return;
    }
    report_trail();
    leave_for_level_1(k);
}

void panic_stop() {
    if (extra_line) putchar('\n');
    printf("*** Panic stop.\n");
    if (levelcount == 1 && statcount == 0) printf("    You were already at the lowest level.\n");
    report_load_place();
    report_trail();
    leave_for_level_1(k_panic_stop);
}

void tolvex_error(const char* format, ...) {
    char text[512];
    va_list args;
    va_start(args, format);
    int n = vsnprintf(text, sizeof text, format, args);
    va_end(args);
    bool ended = n > 0 && static_cast<size_t>(n) < sizeof text && text[n - 1] == '\n';
    printf("*** Tolvex error. %s%s", text, ended ? "" : "\n");
    if (starting_up) {
        fflush(stdout);
        exit(1);
    }
    report_place();
    leave_for_level_1(k_internal_fault);
}

// ---- levels --------------------------------------------------------------------------------------------

/// What a level puts aside of the statement below it. The values themselves stay in the frames of the
/// statement.
struct SuspendedStatement {
    RingState ring;
    tokentipe token;
    nameptr zilch;
    boolean tt_flag, bar_closes, linesuppression, plain_residues, done_load, minus_warning;
    bool lifted;  // modding polynomials stand in another ring than the user's
    StoredPlace place;
    polypt names;  // variables in force instead of the user's; nil: the user's
    StatementCounters counters;
    ScratchMark scratch;
};

static SuspendedStatement suspend_statement() {
    SuspendedStatement s = {ring_capture(),
                            token,
                            zilch,
                            tt_flag,
                            eval_state.bar_closes,
                            linesuppression,
                            eval_state.plain_residues,
                            done_load,
                            minus_warning,
                            modding_lifted > 0,
                            set_statement_aside(),
                            eval_state.user_names == nullptr ? nullptr : polynames,
                            save_counters(),
                            scratch_mark()};
    back_to_user_names();
    if (s.lifted) modding_exchange();
    ring_unwind();  // the level works in the ring of the user
    integerflag = 0;
    eval_state.bar_closes = 0;  // what is held stays held: the level may delete it
    zilch = nullptr;
    tt_flag = 1;
    return s;
}

static void resume_statement(const SuspendedStatement& s) {
    interrupts_held++;
    ring_assign(s.ring);
    if (s.lifted) modding_exchange();
    token = s.token;
    zilch = s.zilch;
    tt_flag = s.tt_flag;
    eval_state.bar_closes = s.bar_closes;
    linesuppression = s.linesuppression;
    if (s.plain_residues) begin_plain_residues();
    done_load = s.done_load;
    minus_warning = s.minus_warning;
    resume_stored_place(s.place);
    if (s.names != nullptr) {
        eval_state.user_names = polynames;
        eval_state.user_line_sup = do_line_sup;
        polynames = s.names;
        do_line_sup = 0;
    }
    restore_counters(s.counters);
    scratch_release(s.scratch);
    interrupts_held--;
}

/// The statement below works modulo a prime for a while, in a ring that the user has not set.
static void report_switched_ring() {
    printf("\n*** You have interrupted at a delicate time. Tolvex had switched\n"
           "    internally to arithmetic mod p. It has switched back for your \n"
           "    convenience during this interrupt. Do not do any significant \n"
           "    polynomial computations.  To abort, enter &@ followed by  &(p=_i:) .\n\n");
}

static void open_level() {
    if (levelcount == k_highest_level) {
        printf("*** Highest legal command level is 9.\n");
        panic_stop();
    }
    SuspendedStatement below = suspend_statement();
    if (was_in_rat && below.ring.modularmode) report_switched_ring();
    breaktime[time_level] = time_now();
    levelcount++;
    levels_opened++;
    quotient_by_zero = 0;  // above level 1 a division by 0 is a warning, and its value 0
    time_level++;
    time_off[time_level] = {};
    enter_pushed_level();
    run_level();
    levelcount--;
    quotient_by_zero = levelcount == 1;
    time_level--;
    TimePair now = time_now();
    time_off[time_level].seconds += now.seconds - breaktime[time_level].seconds;
    time_off[time_level].ticks += now.ticks - breaktime[time_level].ticks;
    printf("*** Resuming earlier command level\n");
    fflush(Output);
    resume_statement(below);
}

static void announce_level() {
    if (extra_line) putchar('\n');
    printf("*** New command level.\n");
    report_trail_of_level();
    history_clear();
}

void new_level() {
    announce_level();
    open_level();
}

/// A level in the middle of a statement, whose line is read on where it stopped. At a prompt no statement has
/// been begun.
static void level_of_interrupt() {
    announce_level();
    interrupt_levels++;
    if (!line_open) {
        open_level();
        interrupt_levels--;
        drop_open_line();
        write_prompt();
        fflush(Output);
        return;
    }
    take_line_rest();
    open_level();
    interrupt_levels--;
    give_line_rest();
}

// ---- interrupts and memory -----------------------------------------------------------------------------

extern "C" {
static void note_interrupt(int) { interrupt_pending = 1; }
}

// Reads and writes go on after the signal, so that none is cut short.
void install_interrupt_handler() {
    struct sigaction act = {};
    act.sa_handler = note_interrupt;
    sigemptyset(&act.sa_mask);
    act.sa_flags = SA_RESTART;
    sigaction(SIGINT, &act, nullptr);
    start_probe();
}

void take_interrupt() {
    if (interrupts_held > 0) return;
    int raised = interrupt_pending;
    interrupt_pending = 0;
    if (probe_answered(raised)) return;
    level_of_interrupt();
}

void mem_error() {
    if (lookupgcd > 0 && polygcd_stack_depth == 0) {
        printf("\n*** Warning.  You are low on heap space.  Will try freeing the gcd stash.\n");
        fflush(Output);
        free_gcd_stash();
        return;
    }
    printf("\n*** Warning.  You are out of heap space.  Abort this computation.\n");
    fflush(Output);
    leave_for_level_1(k_internal_fault);
}
}  // namespace tolvex
