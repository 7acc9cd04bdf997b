// Time a token: digits, names, operators, and the history that every token passes.
#include "language/tokens/scanner.h"
#include "tests/support/support.h"

#include <benchmark/benchmark.h>
#include <string>
using namespace tolvex;

static void scan_all(benchmark::State& state, const std::string& piece) {
    test::set_up_once();
    std::string text;
    while (text.size() < 1000000) text += piece;
    text += '\n';
    FILE* in = tmpfile();
    fwrite(text.data(), 1, text.size(), in);
    nameptr from_stream = nullptr;
    int64_t tokens = 0;
    for (auto _ : state) {
        rewind(in);
        leftover[0] = 0;
        do {
            scanner(in, &token, &from_stream);
            tokens++;
        } while (tok_char(token) != ';');
    }
    state.SetItemsProcessed(tokens);
    state.SetBytesProcessed(static_cast<int64_t>(text.size()) * static_cast<int64_t>(state.iterations()));
    fclose(in);
}

static void digits(benchmark::State& state) { scan_all(state, "7316459"); }
static void names(benchmark::State& state) { scan_all(state, "alpha b c12345678 "); }
static void expressions(benchmark::State& state) { scan_all(state, "x := 3 y^2 + (a - 12)*z, "); }
BENCHMARK(digits);
BENCHMARK(names);
BENCHMARK(expressions);
BENCHMARK_MAIN();
