#include "language/tokens/scanner.h"
#include "numbers/data_files.h"
#include "numbers/number.h"
#include "storage/stash.h"
#include "tests/support/support.h"

#include <cstdlib>
#if __has_include("poly/poly_vars.h") && !defined(TOLVEX_UP_TO_numbers) && !defined(TOLVEX_UP_TO_tokens) &&  \
                  !defined(TOLVEX_UP_TO_storage)
#define TOLVEX_WITH_POLY
#include "poly/dense_basic.h"
#include "poly/poly_vars.h"
#endif
namespace tolvex::test {
void set_up_once() {
    static bool done = false;
    if (done) return;
    done = true;
    open_all_stashes();
#if !defined(TOLVEX_UP_TO_storage)
    init_history();
#if !defined(TOLVEX_UP_TO_tokens)
    init_number_constants();
    initialize(TOLVEX_DATA_DIRECTORY);
    starting_up = 0;
#endif
#endif
#ifdef TOLVEX_WITH_POLY
    init_poly_constants();
#endif
}

uint64_t run_seed() {
    const char* s = getenv("TOLVEX_SEED");
    return s != nullptr ? strtoull(s, nullptr, 10) : 20261121;
}

int rounds(int n) {
    const char* s = getenv("TOLVEX_TEST_MULTIPLIER");
    double m = s != nullptr ? strtod(s, nullptr) : 1;
    int r = static_cast<int>(n * m);
    return r > 0 ? r : 1;
}
}  // namespace tolvex::test
