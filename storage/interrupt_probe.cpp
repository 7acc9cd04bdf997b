#include "storage/interrupt_probe.h"
#ifdef TOLVEX_POLL_GAPS
#include "storage/interrupt.h"

#include <csignal>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <execinfo.h>
#include <link.h>
#include <sys/time.h>
namespace tolvex {
static constexpr int64_t k_rhythm_us = 4000;           // the tick of the kernel is about as long
static constexpr int64_t k_reported_gap = 12'000'000;  // nanoseconds
static constexpr int64_t k_middle = 6'000'000;         // when the calls are looked at
static constexpr int k_calls = 24;

static int64_t raised_at = 0;
static void* calls[k_calls];
static int call_count = 0;
static uintptr_t load_address = 0;

static int64_t processor_time() {
    timespec t;
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return int64_t(t.tv_sec) * 1'000'000'000 + t.tv_nsec;
}

extern "C" {
static void raise_flag(int) {
    int64_t now = processor_time();
    if (interrupt_pending == 0) {
        raised_at = now;
        call_count = 0;
        interrupt_pending = k_probe_raised;
    } else if (call_count == 0 && now - raised_at > k_middle) {
        call_count = backtrace(calls, k_calls);
    }
}

static int note_load_address(dl_phdr_info* info, size_t, void*) {
    load_address = info->dlpi_addr;  // the program itself comes first
    return 1;
}
}

void start_probe() {
    call_count = backtrace(calls, k_calls);  // the first call may load a library, which a handler must not
    call_count = 0;
    dl_iterate_phdr(note_load_address, nullptr);
    struct sigaction act = {};
    act.sa_handler = raise_flag;
    sigemptyset(&act.sa_mask);
    act.sa_flags = SA_RESTART;
    sigaction(SIGPROF, &act, nullptr);
    itimerval rhythm = {{0, k_rhythm_us}, {0, k_rhythm_us}};
    setitimer(ITIMER_PROF, &rhythm, nullptr);
}

bool probe_answered(int raised) {
    if (raised != k_probe_raised) return false;
    int64_t gap = processor_time() - raised_at;
    if (gap <= k_reported_gap) return true;
    fprintf(stderr, "poll gap %.1f ms:", static_cast<double>(gap) / 1e6);
    for (int i = 2; i < call_count; i++)  // without the handler and the return from it
        fprintf(stderr, " %lx",
                static_cast<unsigned long>(reinterpret_cast<uintptr_t>(calls[i]) - load_address));
    fputc('\n', stderr);
    return true;
}
}  // namespace tolvex
#endif
