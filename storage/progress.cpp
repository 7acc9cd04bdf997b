#include "storage/progress.h"

#include <cstdio>
namespace tolvex {
static constexpr int32_t k_levels_shown = 16;
static constexpr int64_t k_loudest = 1000;
/// Of the counts of the levels down to each one, up to k_loudest + 1.
static int64_t product[k_levels_shown + 1] = {1};

static bool shown() { return dumpitt_level <= k_levels_shown && product[dumpitt_level] <= k_loudest; }

void dumpitt(const char* message, int64_t n, boolean newline, boolean multin, boolean colon) {
    if (multin && ++dumpitt_level <= k_levels_shown) {
        int64_t factor = n < 1 ? 1 : n > k_loudest ? k_loudest + 1 : n;
        int64_t all = product[dumpitt_level - 1] * factor;
        product[dumpitt_level] = all > k_loudest ? k_loudest + 1 : all;
    }
    if (!shown()) return;
    bool number_alone = message[0] == ' ' && message[1] == 0;
    dumpitt_length +=
        printf("%s%lld%s", number_alone ? " " : message, static_cast<long long>(n), colon ? ":" : "");
    if (newline) {
        printf("\n");
        dumpitt_length = 0;
    }
    fflush(stdout);
}

void decr_dumpitt(int32_t n, boolean newline, boolean verb) {
    if (newline && verb && shown() && dumpitt_length > 0) {
        printf("\n");
        dumpitt_length = 0;
    }
    dumpitt_level = dumpitt_level > n ? dumpitt_level - n : 0;
}
}  // namespace tolvex
