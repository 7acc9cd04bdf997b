#pragma once
// Random gcd problems of all kinds, and the settings of the driver in all combinations.
#include "poly/poly.h"
#include "tests/support/random_poly.h"

#include <string>
#include <vector>
namespace tolvex::test {
struct StressRing {
    Ring ring;
    bool composite;
};
extern const std::vector<StressRing> stress_rings;

/// A kind of problem. u = a c, v = b c for the most part.
struct StressProblem {
    poly u = nullptr, v = nullptr;
    bool negative_exponents = false;  // laurent is on
};
using MakeProblem = void(Rng& rng, int32_t size, StressProblem* p);
struct StressFamily {
    const char* name;
    MakeProblem* make;
};
extern const std::vector<StressFamily> stress_families;
inline constexpr int32_t k_stress_variables = 12;
/// size 0: of a few terms; 1: of dozens; 2: of hundreds and more.
void free_problem(StressProblem* p);

/// The driver's switches as the process begins.
void default_settings();
/// One of many combinations; the text names it. Problems too large for a remainder sequence get none that
/// leads there by force.
std::string permuted_settings(const StressProblem& p, Rng& rng);
}  // namespace tolvex::test
