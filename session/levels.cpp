#include "session/levels.h"

#include "gcd/gcd_modes.h"
#include "language/language_modes.h"
#include "language/ports.h"
#include "language/tokens/scanner.h"
#include "numbers/data_files.h"
#include "numbers/ring_switch.h"
#include "quoly/quoly_mult.h"
#include "session/jumps.h"
#include "session/loop.h"
#include "session/messages.h"
#include "session/modulus.h"
#include "session/session_modes.h"
#include "session/startup.h"
#include "storage/audit.h"
#include "storage/interrupt.h"
#include "storage/progress.h"
#include "storage/scratch.h"

#include <csignal>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
namespace tolvex {
// Numbers of failures beside those of the message table, as enter_level_1 tells them apart.
static constexpr int32_t k_panic_stop = 0;
static constexpr int32_t k_internal_fault = -2;
static constexpr int32_t k_unfinished_builtin = -3;

void clear_statement_counters() {
    c_cntcount = a_cntcount = d_cntcount = g_cntcount = 0;
    g_cutoff = 10;
    uninit = 0;
    alg_c_count = 0;
    original_depth = 1;
}

// ---- the way back to level 1 ---------------------------------------------------------------------------

/// Puts in order what the statements of all levels may have left half done, and goes to the prompt of
/// level 1. Values that only skipped frames held are lost to the pools; the audit takes what is live now as
/// its base.
[[noreturn]] static void leave_for_level_1(int32_t failure) {
    bool suspended = mod_is_changed > 0;
    ring_unwind();
    quoly none = nullptr;
    if (suspended && modularmode) reduce_stored_words(&none);
    was_modulus = -1;
    integerflag = 0;
    scratch_release({nullptr, 0});
    close_startup();
    clear_statement_counters();
    dumpitt_length = dumpitt_level = 0;
    tt_flag = 1;
    statcount = 0;
    eval_state = {};
    func_def_count = 0;
    doing_sys_func = in_sys_func = 0;
    exit_flag = leave_flag = cycle_flag = 0;
    matrix_eval = syst_dump = 0;
    startexpr = prev_expr = currentchar = nullptr;
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

void return_to_top() { leave_for_level_1(k_unfinished_builtin); }

// ---- reports -------------------------------------------------------------------------------------------

/// The statement as far as it has been read, for what was typed.
static void report_place() {
    if (tt_flag && finish != nullptr) {
        printf("*** Error occurred at this point:\n");
        history_print();
    }
    history_clear();
}

static void report_error(int32_t k, const char* text) {
    if (extra_line) putchar('\n');
    printf("*** Inappropriate symbol: %s\n", shown_token(text));
    out_err_mess(k);
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
        open_level();
        return;
    }
    leave_for_level_1(k);
}

void panic_stop() {
    if (extra_line) putchar('\n');
    printf("*** Panic stop.\n");
    if (levelcount == 1 && statcount == 0) printf("    You were already at the lowest level.\n");
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
    boolean tt_flag, doing_sys_func, bar_closes;
    int32_t func_def_count;
    ScratchMark scratch;
};

static SuspendedStatement suspend_statement() {
    SuspendedStatement s = {ring_capture(),        token,          zilch,         tt_flag, doing_sys_func,
                            eval_state.bar_closes, func_def_count, scratch_mark()};
    ring_unwind();  // the level works in the ring of the user
    integerflag = 0;
    doing_sys_func = 0;
    eval_state.bar_closes = 0;  // what is held stays held: the level may delete it
    func_def_count = 0;
    zilch = nullptr;
    tt_flag = 1;
    return s;
}

static void resume_statement(const SuspendedStatement& s) {
    ring_assign(s.ring);
    token = s.token;
    zilch = s.zilch;
    tt_flag = s.tt_flag;
    doing_sys_func = s.doing_sys_func;
    eval_state.bar_closes = s.bar_closes;
    func_def_count = s.func_def_count;
    scratch_release(s.scratch);
}

static void open_level() {
    if (levelcount == k_highest_level) {
        printf("*** Highest legal command level is 9.\n");
        panic_stop();
    }
    SuspendedStatement below = suspend_statement();
    bool at_prompt = !line_open;
    breaktime[time_level] = time_now();
    levelcount++;
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
    if (at_prompt) drop_open_line();  // nothing has been read below: the line of `&_p` is no statement there
    resume_statement(below);
}

static void announce_level() {
    if (extra_line) putchar('\n');
    printf("*** New command level.\n");
    history_clear();
}

void new_level() {
    announce_level();
    open_level();
}

// ---- interrupts and memory -----------------------------------------------------------------------------

extern "C" {
static void note_interrupt(int) { interrupt_pending = 1; }
}

void let_interrupts_break_reads(bool yes) {
    struct sigaction act = {};
    act.sa_handler = note_interrupt;
    sigemptyset(&act.sa_mask);
    act.sa_flags = yes ? 0 : SA_RESTART;
    sigaction(SIGINT, &act, nullptr);
}

void install_interrupt_handler() { let_interrupts_break_reads(false); }

void take_interrupt() {
    if (interrupts_held > 0) return;
    interrupt_pending = 0;
    let_interrupts_break_reads(false);
    new_level();
}

void mem_error() {
    printf("\n*** Warning.  You are out of heap space.  Abort this computation.\n");
    fflush(Output);
    leave_for_level_1(k_internal_fault);
}
}  // namespace tolvex
