#pragma once
/// tests/support/support.h: what unit tests and timings stand on: set-up, seeds, properties, caught errors.
#include <csetjmp>
#include <cstdint>
#include <random>
#ifndef TOLVEX_NO_GTEST
#include <gtest/gtest.h>
#endif
#include "storage/failure.h"
namespace tolvex::test {
/// Opens stashes and constants once a process (and the data files where the folder has them).
void set_up_once();
/// The seed of this run: TOLVEX_SEED in the environment, else a fixed one; printed with every failure.
uint64_t run_seed();
/// Rounds of a property: n times TOLVEX_TEST_MULTIPLIER.
int rounds(int n);
using Rng = std::mt19937_64;

/// What the last caught failure was.
struct Caught {
    int32_t code;    // number of error(); -1000 for tolvex_error
    char text[256];  // offending symbol, or the text of tolvex_error
};
extern Caught caught;
extern std::jmp_buf catch_target;
extern bool catching;
}  // namespace tolvex::test

/// Runs `statement` and tells whether it left through error(): true exactly if it did; see caught.code.
#define RAISES(statement)                                                                                    \
    ([&]() -> bool {                                                                                         \
        tolvex::test::catching = true;                                                                       \
        if (setjmp(tolvex::test::catch_target) != 0) {                                                       \
            tolvex::test::catching = false;                                                                  \
            return true;                                                                                     \
        }                                                                                                    \
        statement;                                                                                           \
        tolvex::test::catching = false;                                                                      \
        return false;                                                                                        \
    }())

#ifndef TOLVEX_NO_GTEST
/// A GoogleTest case of `count` rounds with a seeded generator `rng` and the round number `round`.
#define PROPERTY(name, count)                                                                                \
    static void property_##name(tolvex::test::Rng& rng, int round);                                          \
    TEST(Property, name) {                                                                                   \
        tolvex::test::set_up_once();                                                                         \
        for (int i = 0; i < tolvex::test::rounds(count); i++) {                                              \
            uint64_t seed = tolvex::test::run_seed() * 1000003u + static_cast<uint64_t>(i);                  \
            tolvex::test::Rng rng(seed);                                                                     \
            SCOPED_TRACE(::testing::Message()                                                                \
                         << "TOLVEX_SEED=" << tolvex::test::run_seed() << " round " << i);                   \
            property_##name(rng, i);                                                                         \
            if (::testing::Test::HasFailure()) return;                                                       \
        }                                                                                                    \
    }                                                                                                        \
    static void property_##name([[maybe_unused]] tolvex::test::Rng& rng, [[maybe_unused]] int round)
#endif
