#include "session/load.h"

#include "language/evaluator.h"
#include "language/parse.h"
#include "language/tokens/scanner.h"
#include "poly/poly_modes.h"
#include "quoly/quoly.h"
#include "session/levels.h"
#include "session/loop.h"
#include "session/save_file.h"
#include "session/session_modes.h"
#include "storage/failure.h"
#include "storage/interrupt.h"

#include <cstring>
#include <sys/stat.h>
namespace tolvex {
static LoadRun* run_of(const FILE* file) {
    for (LoadRun* r = running_loads; r != nullptr; r = r->below)
        if (r->file == file) return r;
    return nullptr;
}

void close_input_file() {
    if (inpuf == nullptr) return;
    LoadRun* reader = run_of(inpuf);
    if (reader != nullptr) {
        reader->orphan = true;
    } else {
        fclose(inpuf);
    }
    inpuf = nullptr;
    input_file_name[0] = 0;
    done_load = 0;
}

void forget_loads() {
    if (running_loads == nullptr) return;
    for (LoadRun* r = running_loads; r != nullptr; r = r->below)
        if (r->orphan) fclose(r->file);
    running_loads = nullptr;
    minus_warning = 0;
    done_load = 0;  // what an error has stopped starts over
}

/// Drops white space, line ends included; true if something follows.
static bool something_follows(FILE* inf) {
    int c = peek_char(inf);
    for (; c == ' ' || c == '\t' || c == '\r' || c == '\n'; c = peek_char(inf)) read_char(inf);
    return c != EOF;
}

/// One statement; what follows its terminator on the line is a comment.
static void run_file_statement(FILE* file) {
    quoly value = nullptr;
    scanner(file, &token, &zilch);
    eval_state.value_dropped = is_lower(tok_char(token));
    clear_statement_counters();
    run_statement(file, &value, &zilch);
    zilch = nullptr;
    free_quoly(&value);
    if (!at_terminator()) error(Err::not_terminated);
    leftover[0] = 0;
    history_clear();
    drop_line(file);
}

/// Runs inpuf from where it stands.
static void run_input_file() {
    boolean saved_tt = tt_flag, saved_integers = integerflag;
    char saved_leftover = leftover[0];
    tokentipe saved_token = token;
    LoadRun run = {inpuf, false, running_loads};
    running_loads = &run;
    done_load = integerflag = tt_flag = 0;
    leftover[0] = 0;
    minus_warning = 1;
    if (!something_follows(inpuf)) printf("*** Warning.  End of file %s encountered.\n", input_file_name);
    while (inpuf == run.file && !done_load && something_follows(run.file)) {
        poll_interrupt();
        run_file_statement(run.file);
    }
    if (run.orphan) fclose(run.file);
    running_loads = run.below;
    minus_warning = 0;
    tt_flag = saved_tt;
    integerflag = saved_integers;
    token = saved_token;
    leftover[0] = saved_leftover;
    leftover[1] = 0;
}

/// A file that can be opened for reading; no directory.
static FILE* open_for_reading(const char* name) {
    struct stat about;
    if (stat(name, &about) == 0 && S_ISDIR(about.st_mode)) return nullptr;
    return fopen(name, "r");
}

static void close_by_name(bool quiet) {
    if (!quiet) {
        if (inpuf == nullptr)
            printf(" *** Warning. No input file had been open.\n");
        else
            printf(" Now closing %s.\n", input_file_name);
    }
    close_input_file();
}

bool load_named(const char* name, bool quiet) {
    if (*name == 0) {
        error(Err::file_name_missing);
        return false;
    }
    if (strcmp(name, output_file_name) == 0) {
        error(Err::file_open_otherwise);
        return false;
    }
    if (strcmp(name, "@") == 0) {
        close_by_name(quiet);
        return true;
    }
    close_input_file();
    inpuf = open_for_reading(name);
    if (inpuf == nullptr) {
        printf(" *** Warning. %s: no such file. Read cancelled.\n", name);
        tok_set(token, ";");
        leftover[0] = 0;
        error(Err::file_not_opened);
        return false;
    }
    snprintf(input_file_name, sizeof input_file_name, "%s", name);
    run_input_file();
    return true;
}

void load_again() {
    bool from_start = !done_load;
    if (run_of(inpuf) != nullptr) {
        // a load that waits below still reads it: this one gets a stream of its own
        char name[k_file_name_length + 1];
        strcpy(name, input_file_name);
        load_named(name, true);
        return;
    }
    if (from_start) rewind(inpuf);
    run_input_file();
}

void report_load_place() {
    if (tt_flag || inpuf == nullptr || running_loads == nullptr) return;
    char line[256];
    printf("*** Stopped right before this:\n");
    fpos_t here;
    bool known = fgetpos(inpuf, &here) == 0;
    for (int32_t i = 0; i < 3 && fgets(line, sizeof line, inpuf) != nullptr; i++) printf("%s\n", line);
    if (known) fsetpos(inpuf, &here);
    if (!close_inpuf) return;
    printf("\n*** Closing file %s\n", input_file_name);
    close_input_file();
}
}  // namespace tolvex
