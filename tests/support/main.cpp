// The entry of a unit test: prints the seed, raises the stack limit, runs everything.
#ifndef TOLVEX_NO_GTEST
#include "tests/support/support.h"

#include <cinttypes>
#include <cstdio>
#include <sys/resource.h>
#include <unistd.h>
int main(int argc, char** argv) {
    rlimit limit;
    constexpr rlim_t k_stack = rlim_t{256} << 20;
    if (getrlimit(RLIMIT_STACK, &limit) == 0 && limit.rlim_cur < k_stack) {
        rlim_t wanted = limit.rlim_max < k_stack ? limit.rlim_max : k_stack;  // RLIM_INFINITY is the greatest
        bool raised = wanted > limit.rlim_cur;
        limit.rlim_cur = wanted;
        if (raised && setrlimit(RLIMIT_STACK, &limit) == 0)
            execv("/proc/self/exe", argv);  // takes effect at exec
    }
    ::testing::InitGoogleTest(&argc, argv);
    printf("TOLVEX_SEED=%" PRIu64 "\n", tolvex::test::run_seed());
    tolvex::test::set_up_once();
    return RUN_ALL_TESTS();
}
#endif
