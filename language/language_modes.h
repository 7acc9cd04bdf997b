#pragma once
/// language/language_modes.h: what the evaluators and the session share of a statement under way.
#include "language/tokens/token.h"
#include "quoly/quoly.h"
namespace tolvex {
inline quoly sysnum = nullptr;   // value of the statement being executed      writers: main loop
inline quoly prevnum = nullptr;  // value of the previous statement: bare `<`  writers: main loop, change_prec
inline nameptr zilch = nullptr;  // a cursor that is always empty: read from the stream
inline int32_t statcount = 0;    // depth of user-function calls
inline int32_t uninit = 0;       // uninitialised elements seen in this statement
inline boolean matrix_eval = 0;
inline boolean syst_dump = 0;  // the system array is to be displayed
inline int32_t addresser = 1;  // array origin, 0 or 1                       writers: &a
inline boolean doing_sys_func = 0, in_sys_func = 0;
inline boolean exit_flag = 0, leave_flag = 0, cycle_flag = 0;
inline int32_t func_def_count = 0;  // depth of definitions being read
inline int32_t nesting = 0;  // depth of the evaluators on the stack; bounded, so that deep input is an error
}  // namespace tolvex
