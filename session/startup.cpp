#include "session/startup.h"

#include "gcd/gcd_stash.h"
#include "language/language_modes.h"
#include "language/parse.h"
#include "language/symbols.h"
#include "language/tokens/scanner.h"
#include "numbers/data_files.h"
#include "poly/dense_basic.h"
#include "poly/poly_vars.h"
#include "quoly/garbage.h"
#include "quoly/quoly_audit.h"
#include "session/levels.h"
#include "session/loop.h"
#include "session/session_modes.h"
#include "session/switch_table.h"
#include "storage/audit.h"
#include "storage/memory.h"
#include "storage/stash.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <initializer_list>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>
namespace tolvex {
// ---- the data directory --------------------------------------------------------------------------------

/// True if `path` can be executed and is no directory.
static bool runs(const char* path) {
    struct stat about;
    return access(path, X_OK) == 0 && stat(path, &about) == 0 && !S_ISDIR(about.st_mode);
}

/// buffer := the first directory of PATH that holds the program `name`; false if there is none.
static bool search_path(const char* name, char* buffer) {
    const char* at = getenv("PATH");
    while (at != nullptr && *at != 0) {
        size_t length = strcspn(at, ":");
        if (length > 0) {
            int n = snprintf(buffer, k_path_length, "%.*s/%s", static_cast<int>(length), at, name);
            if (n > 0 && static_cast<size_t>(n) < k_path_length && runs(buffer)) return true;
        }
        at += length;
        if (*at == ':') at++;
    }
    return false;
}

int GetExecName(const char* argv0, char* buffer) {
    char relative[k_path_length];
    buffer[0] = 0;
    if (argv0 == nullptr || strlen(argv0) >= k_path_length) return -1;
    if (argv0[0] == '/') {
        strcpy(buffer, argv0);
        return 0;
    }
    if (strncmp(argv0, "./", 2) == 0) {
        strcpy(relative, argv0 + 2);
    } else if (strchr(argv0, '/') != nullptr) {
        strcpy(relative, argv0);  // "../bin/name" and "bin/name" alike
    } else if (!search_path(argv0, relative)) {
        return -1;
    }
    if (relative[0] == '/') {
        strcpy(buffer, relative);
        return 0;
    }
    char here[k_path_length];
    if (getcwd(here, sizeof here) == nullptr) return -1;
    int n = snprintf(buffer, k_path_length, "%s/%s", here, relative);
    if (n > 0 && static_cast<size_t>(n) < k_path_length) return 0;
    buffer[0] = 0;
    return -1;
}

/// path := what the link at `path` names; a relative target replaces the part after the last "/".
static void follow_link(char* path) {
    char target[k_path_length];
    ssize_t n = readlink(path, target, sizeof target - 1);
    if (n <= 0) return;
    target[n] = 0;
    char* slash = strrchr(path, '/');
    if (target[0] == '/' || slash == nullptr) {
        strcpy(path, target);
    } else if (static_cast<size_t>(slash + 1 - path) + static_cast<size_t>(n) < k_path_length) {
        strcpy(slash + 1, target);
    }
}

/// directory := the data directory beside the executable, with a "/" at its end.
static void find_data_directory(const char* argv0, char* directory, size_t size) {
    char path[k_path_length];
    GetExecName(argv0, path);
    follow_link(path);
    char* slash = strrchr(path, '/');
    if (slash == nullptr) {
        snprintf(directory, size, "./BACKWARD/");
    } else {
        slash[1] = 0;
        snprintf(directory, size, "%sBACKWARD/", path);
    }
}

// ---- the start-up script -------------------------------------------------------------------------------

/// Reads the count of megabytes, the first word of the script, and sets the memory budget from it. Without a
/// count there is a budget all the same.
static void read_memory_count() {
    constexpr int64_t k_most = int64_t{1} << 40;
    constexpr int64_t k_quarter_of_megabyte = 225000;  // of the 0.9 MB that a megabyte named gives
    long long count = 0;
    if (tolstartup == nullptr || fscanf(tolstartup, "%lli", &count) != 1) count = 0;
    if (count < 0) count = 0;
    if (count > k_most) count = k_most;
    printf(" Amount of RAM you specified (mbytes): %lli.\n", count);
    if (count == 0) {
        totalavailablememory = 0;
        initial_memory = static_cast<int64_t>(find_total_available_memory() / 4);
    } else {
        initial_memory = count * k_quarter_of_megabyte;
        totalavailablememory = static_cast<uint64_t>(initial_memory) * 4;
    }
}

/// Drops white space, line ends included; true if something follows.
static bool something_follows(FILE* inf) {
    int c = peek_char(inf);
    for (; c == ' ' || c == '\t' || c == '\r' || c == '\n'; c = peek_char(inf)) read_char(inf);
    return c != EOF;
}

/// Runs the statements: one a line, what follows a terminator on its line is a comment.
static void run_script() {
    while (something_follows(tolstartup)) {
        scanner(tolstartup, &token, &zilch);
        clear_statement_counters();
        run_statement(tolstartup, &sysnum, &zilch);
        zilch = nullptr;
        free_quoly(&sysnum);
        if (!at_terminator() || tok_is(token, ":")) error(Err::not_terminated);
        leftover[0] = 0;
        history_clear();
        drop_line(tolstartup);
    }
}

void close_startup() {
    if (tolstartup == nullptr) return;
    fclose(tolstartup);
    tolstartup = nullptr;
}

void load_startup(const char* directory) {
    static const char name[] = "tolstart.txt";
    boolean saved_tt = tt_flag, saved_integers = integerflag;
    char path[2 * k_path_length];
    tt_flag = 0;
    leftover[0] = 0;
    tolstartup = fopen(name, "r");
    if (tolstartup == nullptr) {
        snprintf(path, sizeof path, "%s%s", directory, name);
        tolstartup = fopen(path, "r");
    }
    if (tolstartup == nullptr) fprintf(stderr, "No tolstart.txt file.\n");
    read_memory_count();
    if (tolstartup != nullptr) run_script();
    close_startup();
    tt_flag = saved_tt;
    integerflag = saved_integers;
    leftover[0] = 0;
}

// ---- the order of start-up -----------------------------------------------------------------------------

/// The evaluators and the polynomial routines recurse; 32 MiB of stack are what they count on.
static void raise_stack_limit() {
    constexpr rlim_t k_stack = 0x2000000;
    struct rlimit limit;
    if (getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur >= k_stack) return;
    limit.rlim_cur = k_stack;
    int result = setrlimit(RLIMIT_STACK, &limit);
    if (result != 0) fprintf(stderr, "setrlimit returned result = %d\n", result);
}

#ifdef TOLVEX_CHECKED
/// The roots of the session: the polynomial variables. The language walks the values.
static void walk_session_roots() {
    for (polypt v = polynames; v != nullptr; v = v->next) {
        audit_reach<polydata>();
        for (poly p : {v->p, v->rational_p}) audit_reach_poly(p);
    }
}

static void register_roots() {
    audit_pool<polydata>("polydata");
    audit_pool<namenode>("namenode");
    audit_roots(walk_session_roots);
}
#endif

static void set_up_constants() {
    init_poly_constants();
    init_quoly_constants();
    init_symbols();
    garbage_provide_gcd_stash(mass_gcd_stash);
    check_switch_table();
#ifdef TOLVEX_CHECKED
    register_roots();
#endif
}

void set_up_streams() {
    // A display of many lines goes out in few writes; the loop flushes before it waits for input.
    static char buffer[1 << 16];
    Input = stdin;
    Output = stdout;
    setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
}

void start_up(const char* argv0) {
    char directory[k_path_length + 16];
    install_interrupt_handler();
    mytime[time_level] = time_now();
    raise_stack_limit();
    open_all_stashes();
    init_history();
    find_data_directory(argv0, directory, sizeof directory);
    printf("\n Tolvex 1.0, Linux\nReading initialization data from directory %s\n initializing...\n",
           directory);
    fflush(Output);
    init_number_constants();
    initialize(directory);
    starting_up = 0;
    time_t now = time(nullptr);
    printf("\n %s", asctime(localtime(&now)));
    set_up_constants();
    load_startup(directory);
    charge_time(&mytime[time_level]);
    if (timerflag) {
        putchar('\n');
        write_time_line(mytime[time_level]);
    }
    audit_rebase();
}
}  // namespace tolvex
