#pragma once
// The variables x, y, z for tests of text.
#include "poly/poly_vars.h"
#include "tests/support/random_poly.h"
namespace tolvex::test {
/// Makes the first `count` of x, y, z the variables, taking away those that stand there.
inline void name_variables(int32_t count) {
    use_variables(0);
    const char* names[] = {"x", "y", "z"};
    for (int32_t i = 0; i < count; i++) {
        tokentipe t = {};
        tok_set(t, names[i]);
        insert_poly_name(t, 1);
    }
}
}  // namespace tolvex::test
