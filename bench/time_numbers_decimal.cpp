// Printing and reading long integers, and the start-up tables.
#include "language/tokens/scanner.h"
#include "numbers/data_files.h"
#include "numbers/decimal.h"
#include "numbers/decimal_io.h"
#include "numbers/num_mult.h"
#include "tests/support/support.h"

#include <benchmark/benchmark.h>
#include <string>
using namespace tolvex;
namespace {
std::string digits(int64_t count) {
    std::string text;
    uint64_t x = 88172645463325252u;
    while (static_cast<int64_t>(text.size()) < count) {
        x ^= x << 13, x ^= x >> 7, x ^= x << 17;
        text += static_cast<char>('1' + x % 9);
    }
    return text;
}

void print_number(benchmark::State& state) {
    test::set_up_once();
    std::string text = digits(state.range(0)) + ";";
    FILE* in = fmemopen(text.data(), text.size(), "r");
    FILE* out = fopen("/dev/null", "w");
    number x = {};
    nameptr flag = nullptr;
    int32_t count = 0;
    scanner(in, &token, &flag);
    new_readin(in, &x, &flag, &count);
    fclose(in);
    for (auto _ : state) {
        int32_t length = 0;
        showint(out, &x, 1, 0, 0, 0, 0, 1, &length);
        fflush(out);
    }
    fclose(out);
    special_free(&x);
}
BENCHMARK(print_number)
    ->Arg(1)
    ->Arg(20)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(77337)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMicrosecond);

void read_number(benchmark::State& state) {
    test::set_up_once();
    std::string text = digits(state.range(0)) + ";";
    FILE* in = fmemopen(text.data(), text.size(), "r");
    number x = {};
    for (auto _ : state) {
        rewind(in);
        nameptr flag = nullptr;
        int32_t count = 0;
        scanner(in, &token, &flag);
        new_readin(in, &x, &flag, &count);
    }
    fclose(in);
    special_free(&x);
}
BENCHMARK(read_number)
    ->Arg(1)
    ->Arg(20)
    ->Arg(100)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Arg(1000000)
    ->Unit(benchmark::kMicrosecond);

void read_data_files(benchmark::State& state) {
    test::set_up_once();
    for (auto _ : state) initialize(TOLVEX_DATA_DIRECTORY);
}
BENCHMARK(read_data_files)->Unit(benchmark::kMillisecond);
}  // namespace
BENCHMARK_MAIN();
