// The process: start-up, the jump targets of errors and of the quit command, and the loop of level 1.
//
// This is the only place of setjmp. Everything that must survive a jump is a process-wide word, so main keeps
// no locals.
#include "session/jumps.h"
#include "session/loop.h"
#include "session/save_file.h"
#include "session/session_modes.h"
#include "session/startup.h"

#include <csetjmp>
#include <cstdio>
namespace tolvex {
static jmp_buf buf98;                   // the farewell
static sigjmp_buf buf9999;              // level 1; with the signal mask
static int32_t failure = k_no_failure;  // what brought us to level 1

void jump_to_farewell() { longjmp(buf98, 1); }

void jump_to_level_1(int32_t number) {
    failure = number;
    siglongjmp(buf9999, 1);
}
}  // namespace tolvex

int main(int, char** argv) {
    using namespace tolvex;
    set_up_streams();
    if (setjmp(buf98) != 0) {
        finish_output_file();
        printf("\n bye\n");
        fflush(stdout);
        return 0;
    }
    if (sigsetjmp(buf9999, 1) == 0) start_up(argv[0]);
    enter_level_1(failure);
    run_level();
}
