#pragma once
/// tests/support/returned_errors.h: error() that comes back, as it does at a pushed command level.
#include "tests/support/support.h"
namespace tolvex::test {
extern bool errors_return;       // error() counts and returns
extern int32_t returned_errors;  // how often it did
}  // namespace tolvex::test

/// Runs `statement` with errors that return; the value is how many were raised, caught.code the last of them.
#define ERRORS_OF(statement)                                                                                 \
    ([&]() -> int32_t {                                                                                      \
        tolvex::test::errors_return = true;                                                                  \
        tolvex::test::returned_errors = 0;                                                                   \
        statement;                                                                                           \
        tolvex::test::errors_return = false;                                                                 \
        return tolvex::test::returned_errors;                                                                \
    }())
