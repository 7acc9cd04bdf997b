#pragma once
// What the tests of values stand on: rings, variables, values from text, random values, leak counts.
#include "numbers/primes.h"
#include "numbers/ring_switch.h"
#include "poly/poly_vars.h"
#include "quoly/quoly.h"
#include "quoly/quoly_basic.h"
#include "tests/support/support.h"

#include <string>
namespace tolvex::test {
/// Puts a ground ring in force: 0 the integers, 256 and 65536 the table fields, else the residues modulo m.
/// With it `vars` variables x, y, z (x is level 1). Everything is put back at the end.
class Setting {
  public:
    Setting(int32_t m, int32_t vars, bool with_laurent = false);
    ~Setting();
    Setting(const Setting&) = delete;
    Setting& operator=(const Setting&) = delete;
};

/// Evaluates an expression by the rules of the language: + - * / ^, products by juxtaposition, parentheses.
/// Line breaks with or without continuation mark are blanks; ";" ends it.
quoly value(const std::string& text);
/// The text of q as quoly_display writes it, to the terminal or to a file.
std::string text_of(const quolynode* q, bool terminal = true, bool* open = nullptr);

/// A random value: biased to small, with a denominator about half of the time.
quoly random_value(Rng& rng, int32_t vars, int32_t size);
quoly random_polynomial_value(Rng& rng, int32_t vars, int32_t size);
quoly random_nonzero_value(Rng& rng, int32_t vars, int32_t size);
quoly copy_of(const quolynode* q);

/// True if the form of q is canonical; over rings with gcds also that it is in lowest terms.
bool canonical(const quolynode* q);
bool ring_has_gcds();

/// Live records of all pools that values use; 0 outside the checked build.
struct Live {
    int64_t count[4];
    bool operator==(const Live&) const = default;
};
Live value_records();
}  // namespace tolvex::test
