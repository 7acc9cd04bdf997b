#pragma once
/// language/language_modes.h: what the evaluators and the session share of a statement under way.
///
/// Purpose    the words that a statement leaves behind or asks for; the session clears them before the next
///            one and after an error.
#include "language/tokens/token.h"
#include "quoly/quoly.h"
namespace tolvex {
inline quoly sysnum = nullptr;   // value of the statement being executed             writers: session/loop
inline quoly prevnum = nullptr;  // value of the previous statement: bare `<`         writers: session/loop
inline nameptr zilch = nullptr;  // a cursor that is always empty: read from the stream
inline int32_t statcount = 0;    // depth of user-function calls                      writers: functions
inline int32_t uninit = 0;       // uninitialised elements seen in this statement     writers: array_elements
inline int32_t interrupt_levels = 0;  // levels that an interrupt has opened      writers: session/levels
inline boolean output_open = 0;       // output statements have left a line open           writers: write_out
inline boolean syst_dump = 0;   // the system array is to be displayed               writers: array_statement
inline FILE* outpuf = nullptr;  // the output file, nil: none  writers: session/save_file
// Requests of the statement that has just run: leave the function, leave the loop, go on with its next turn.
inline boolean exit_flag = 0, leave_flag = 0, cycle_flag = 0;

/// A value that an evaluator holds while it reads on: the left operand of an operator, an argument. It stays
/// where it lives; when a statement that runs meanwhile replaces or deletes it, the holder inherits it
/// (free_value, own_value in language/symbols.h), so that nothing is copied before it has to be.
struct held_operand {
    quolyptr at;   // where the value is
    quolyptr own;  // the holder's own slot; at == own: nothing to inherit
    held_operand* below;
};
/// What the evaluators keep about the statement under way. The session copies it into the record of a level
/// and puts it back after a jump: all zero at level 1.
struct EvalState {
    held_operand* held;     // innermost first; not nil: a value is half computed, the ring must not change
    boolean value_dropped;  // the statement that begins here is asked for no value: an assignment copies none
    boolean bar_closes;  // k_bar_closes, k_line_closes: what ends an expression here (language/evaluator.h)
    polypt user_names;   // the list of variables while a display uses another one; nil: polynames is in force
    boolean user_line_sup;   // and do_line_sup that goes with it
    boolean plain_residues;  // a save has put alt_form_display aside, which was set
};
inline EvalState eval_state = {};
}  // namespace tolvex
