#pragma once
/// language/statements.h: stored statements: how they are read, kept and run.
///
/// Purpose    bodies of functions and of control statements are read once into token lists and run by the
///            same readers as what is typed, through a cursor.
///
///   formnode -> condnode   simple statement: expr
///      |                   if:         cond, form1 (then), form2 (else)
///      v                   while, for: cond, form1; the list of a `for` begins with ":"
///   formnode ...           every list ends with the end mark
///
/// Invariant  a body does not change once it has been read, so that it can run in several calls at a time.
/// Ownership  a formnode owns its comments and its statement, that its lists and bodies. The body of the last
///            immediate control statement is kept by this module as long as it is the last or runs.
/// Raises     8, 35, 38, 103, 104, 132, 190, 214, 319 reading; 31 running; 222, 225 `<F` and the place; 347.
#include "language/tokens/scanner.h"
#include "quoly/quoly.h"

#include <cstdio>
namespace tolvex {
struct condnode;
using condexptr = condnode*;
struct formnode;
using formptr = formnode*;
struct formnode {
    condexptr cptr;
    comptr comms;  // comments in front of the statement
    formptr next;
};
enum class StatementKind : int32_t { simple, choice, while_loop, for_loop };
struct condnode {
    nameptr cond;
    nameptr expr;
    formptr form1, form2;
    condexptr next;  // free-list link
    StatementKind kind;
    boolean aloop;  // kind is a loop
};
static_assert(std::is_trivially_destructible_v<formnode> && std::is_trivially_destructible_v<condnode>);
inline formptr formhead = nullptr;
inline condexptr condhead = nullptr;
inline comptr comhead = nullptr;

// ---- reading (language/body_reader.cpp, language/attach.cpp) -------------------------------------------

/// What ends a list or a body.
enum class Closer : int32_t { period, od, else_or_fi, fi, then_word, do_word };

/// A definition under way: where its tokens come from, and how it has ended.
struct BodyReader {
    FILE* inf;
    nameptr* flag;
    bool immediate;    // a control statement that is run when it has been read
    bool closed;       // the end of the file or 12 empty lines have ended all that was open
    bool token_ahead;  // the token after the "." is known: it stood behind a digit
    tokentipe after;   // that token
};

/// Reads a body up to its closer, which is then the current token. False, and *f nil, if an error has come
/// back.
bool right_side(BodyReader& r, formptr* f, Closer end);
/// Reads the control statement whose first word, `word`, has been read over; the current token afterwards is
/// the first one behind it.
bool read_control_statement(BodyReader& r, const tokentipe& word, condexptr* p);
/// Gathers the tokens from the current one to the end of a statement or condition into a list; what has ended
/// it is the current token. False if an error has come back.
bool attach(BodyReader& r, nameptr* q, Closer end, bool loop_header);
/// What does not change from run to run is worked out once: hashes of variables and functions, ids of
/// built-in functions, numbers that fit one digit. Literals and comments are left alone.
void bind_list(nameptr first);
/// True if the current token is the closer.
bool at_closer(Closer end);
/// True if nothing but the end of the input can follow the ";" that is the current token.
bool input_has_ended(const BodyReader& r);
void free_form(formptr* f);
/// A statement with its parts; nil is allowed.
void free_statement(condexptr* p);
// For reports on a definition that is given up; nil: none.
inline nameptr last_attached = nullptr;      // the list gathered last
inline const formnode* last_good = nullptr;  // the statement that ";" has ended last
inline tokentipe current_func = {};          // the name of the definition under way

/// What a reader has built so far and nobody else owns yet. It lives on the process stack of the reader; an
/// error that does not come back gives it back through drop_unfinished.
struct Unfinished {
    void (*drop)(void* what);
    void* what;
    Unfinished* below;
};
inline Unfinished* unfinished = nullptr;  // innermost first
inline void begin_unfinished(Unfinished& u, void (*drop)(void*), void* what) {
    u = {drop, what, unfinished};
    unfinished = &u;
}
inline void end_unfinished(const Unfinished& u) { unfinished = u.below; }
void drop_unfinished();

// ---- running (language/control.cpp) --------------------------------------------------------------------

/// Runs one statement. *n: its value, nil when it has none.
void getval(FILE* inf, condexptr p, quolyptr n);
/// Runs a body: *n is the value of the statement that was run last.
void eval_form(FILE* inf, formptr f, quolyptr n);
/// Reads and runs the control statement whose word has been read over. It stays for `<F`.
void call_sys_func(const tokentipe& word, FILE* inf, quolyptr n, nameptr* flag);
/// `<F`, the "F" being the current token.
void run_sys_func(FILE* inf, quolyptr n, nameptr* flag);
/// The last control statement that was typed, nil: there is none.
const condnode* last_control_statement();
/// After a jump to level 1 no stored statement runs any more.
void forget_running_statements();
/// Makes pools and roots known to the audit.
void init_statements();
#ifdef TOLVEX_CHECKED
/// Counts all records of a body as reachable.
void audit_reach_form(const formnode* f);
#endif

/// The first token of a list becomes the current one, the cursor stands on it.
inline void start_list(nameptr list, nameptr* cursor) {
    *cursor = list;
    token = list->let;
    currentchar = list->next;
}
/// The header of a loop or a sum: name, first, last and step, all fitting one digit.
struct LoopName {
    tokentipe let;
    nameptr node;  // where it stands in a stored list
};
struct LoopHeader {
    LoopName name;
    int32_t first, last, step;
    const int32_t*
        columns;    // the values, in rising order, in scratch memory of the caller's mark; nil: a range
    int32_t count;  // of them
};
/// Reads a header from the variable on; the variable has its first value afterwards. False if an error has
/// come back.
bool set_up_for_loop(FILE* inf, nameptr* flag, LoopHeader* h);
/// The turns of a loop: `index` goes up to `last`, sign * index is the value of the variable.
struct LoopTurns {
    int64_t index, last, step;
    int32_t sign;
    const int32_t* columns;  // the value of turn `index` stands at this place; nil: see above
};
LoopTurns turns_of(const LoopHeader& h);
/// Goes on to the next turn and writes the variable.
void next_turn(LoopTurns& t, LoopName& name);

/// Where a stored statement or a definition under way stands, and what has been asked of the ones around it.
struct StoredPlace {
    nameptr startexpr, prev_expr, currentchar;
    boolean exit_flag, leave_flag, cycle_flag;
    DefinitionLines lines;
    nameptr last_attached;
    const formnode* last_good;
    tokentipe current_func;
};
/// Clears the place; the present one is the answer.
StoredPlace set_statement_aside();
void resume_stored_place(const StoredPlace& place);

// ---- conditions (language/condition.cpp) ---------------------------------------------------------------

/// 1 or 0: the condition from the current token to its end mark, or to "]".
bool bool_expre(FILE* inf, nameptr* flag);
}  // namespace tolvex
