#include "storage/audit.h"
#ifdef TOLVEX_CHECKED
#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
namespace tolvex {
struct audit_row {
    const char* name;
    const int64_t* live;
    int64_t reachable;
    int64_t base;
};

namespace {
audit_row rows[32];
int row_count = 0;
void (*walkers[32])();
int walker_count = 0;

void walk_all_roots() {
    for (int i = 0; i < row_count; i++) rows[i].reachable = 0;
    for (int i = 0; i < walker_count; i++) walkers[i]();
}
}  // namespace

audit_row* audit_new_row(const char* name, const int64_t* live) {
    CHECK(row_count < 32);
    rows[row_count] = {name, live, 0, 0};
    return &rows[row_count++];
}

void audit_add(audit_row* row, int64_t count) { row->reachable += count; }

void audit_add_walker(void (*walker)()) {
    CHECK(walker_count < 32);
    walkers[walker_count++] = walker;
}

void audit_rebase() {
    walk_all_roots();
    for (int i = 0; i < row_count; i++) rows[i].base = *rows[i].live - rows[i].reachable;
}

bool audit_compare(const char* after_what) {
    walk_all_roots();
    bool same = true;
    for (int i = 0; i < row_count; i++) {
        int64_t lost = *rows[i].live - rows[i].reachable - rows[i].base;
        if (lost == 0) continue;
        same = false;
        fprintf(stderr, "*** leak audit: %s: %" PRId64 " records after %s\n", rows[i].name, lost, after_what);
    }
    const char* mode = getenv("TOLVEX_AUDIT");
    if (!same && mode != nullptr && strcmp(mode, "abort") == 0) abort();
    if (!same) audit_rebase();  // report each loss once
    return same;
}

void check_failed(const char* file, int line, const char* condition) {
    fflush(stdout);
    fprintf(stderr, "*** CHECK failed: %s:%d: %s\n", file, line, condition);
    abort();
}
}  // namespace tolvex

/// Free records are poisoned and linked through themselves: the leak check has to follow those links.
extern "C" const char* __lsan_default_options() { return "use_poisoned=1"; }
#endif
