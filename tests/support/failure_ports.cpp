// The failure routines as unit tests and timings see them: a caught failure jumps to RAISES, any other ends
// the test.
#include "language/tokens/token.h"
#include "storage/interrupt.h"
#include "tests/support/returned_errors.h"
#include "tests/support/support.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
namespace tolvex::test {
Caught caught = {};
std::jmp_buf catch_target;
bool catching = false;
bool errors_return = false;
int32_t returned_errors = 0;

[[noreturn]] static void fail(int32_t code, const char* text) {
    caught.code = code;
    snprintf(caught.text, sizeof caught.text, "%s", text);
    if (catching) longjmp(catch_target, 1);
    fprintf(stderr, "uncaught failure %d: %s\n", code, text);
    abort();
}
}  // namespace tolvex::test

namespace tolvex {
void error(Err code, const char* text) {
    if (test::errors_return) {
        test::caught.code = static_cast<int32_t>(code);
        test::returned_errors++;
        return;
    }
    test::fail(static_cast<int32_t>(code), text != nullptr ? text : tok_text(token));
}
void tolvex_error(const char* format, ...) {
    char text[256];
    va_list args;
    va_start(args, format);
    vsnprintf(text, sizeof text, format, args);
    va_end(args);
    test::fail(-1000, text);
}
void mem_error() {}
void take_interrupt() { interrupt_pending = 0; }
}  // namespace tolvex
