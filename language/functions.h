#pragma once
/// language/functions.h: user functions: definitions, calls, and the frames of running calls.
///
/// Purpose    a function is a stored body with a list of parameters. A call pushes its parameters on the
///            table of variables, runs the body, and takes them off; a parameter ^p is copied in and
///            moved back.
///
///   call_frames -> frame of the innermost call -> its caller's frame -> ... -> nil     (statcount of them)
///
/// Invariant  frames live on the process stack: an error report walks them while the stack still stands, and
///            whoever leaves for level 1 takes them off with pop_calls first. The newest definition of a name
///            comes first in its bucket and hides the older ones.
/// Ownership  a funcnode owns its parameters and its body. A function with a frame is not deleted.
/// Raises     5, 6, 7, 11, 12, 103, 237 definitions; 14, 15, 16, 125, 206, 207, 318, 347 calls; 20, 170
///            deletion.
#include "language/array_params.h"
#include "language/statements.h"
#include "language/symbols.h"
#include "storage/failure.h"
namespace tolvex {
struct paramnode;
using paramptr = paramnode*;
struct paramnode {
    tokentipe let;
    boolean result;  // ^p: the value is moved back
    binding* bound;  // a compiled parameter: its binding
    paramptr next;
};
struct funcnode;
using funcptr = funcnode*;
struct funcnode {
    tokentipe name;
    paramptr pars;
    int32_t results;  // how many of them are ^p
    formptr rht;
    formptr comp;                 // the statements after Compile, part of rht
    binding* bindings;            // of the names in them
    const condnode* compiled_by;  // the statement Compile that has bound them; nil: none has run
    boolean do_params;            // the parameters are among the bindings
    boolean only_compiled;        // in front of compiled_by the body has no statement but Integer
    boolean in_words;             // and it has that
    funcptr next;
};
static_assert(std::is_trivially_destructible_v<funcnode> && std::is_trivially_destructible_v<paramnode>);
inline funcptr func_garb = nullptr;
inline paramptr param_garb = nullptr;
inline NameTable<funcnode, &funcnode::name, k_function_buckets> func_store;

/// One running call.
struct CallFrame {
    funcptr f;
    ResultTarget* targets;  // by place of the parameter; nil: the function has no ^p
    arrptr* arrays;         // by place of the parameter: its alias; nil: no argument is an array
    CallFrame* below;
};
inline CallFrame* call_frames = nullptr;

/// Reads the definition behind Func; the name is the current token.
void funcdef(FILE* inf, nameptr* flag);
/// Calls the function `name`, which is the current token; afterwards the first token behind the call is.
void evaluate(FILE* inf, tokentipe& name, quolyptr n, nameptr* flag);
/// Deletes the newest definition (`@F`), or all but the newest (`@<F>`). The error is 20 or 170.
void delete_function(tokentipe& name);
void delete_older_functions(tokentipe& name);
/// True if a running call has a parameter of that name.
bool is_running_parameter(const tokentipe& name);
/// Makes pools and roots known to the audit.
void init_functions();

// ---- for reports and for the way to level 1 ------------------------------------------------------------

/// Takes the parameters of all running calls off the table; those by reference go back first.
void pop_calls();
/// Writes the names of the running functions, innermost first. True if the last line is left open.
bool report_calls();
/// Writes the statements under way, the outer one and the current one up to the current token; nothing if
/// none runs.
bool report_statements();
}  // namespace tolvex
