#pragma once
/// language/symbols.h: the symbol table of scalar variables.
///
/// Purpose    chained hash tables; the first letter and the syntax decide the table (lower case: variable
///            or array; upper case: function). Polynomial variables live in polynames and take
///            precedence.
/// Invariant  a bucket is a chain, new entries at its head, so that locals shadow globals.
/// Ownership  a varnode owns its value; nil: the variable exists without a value.
/// Raises     19 undefined variable (spec_retrieve).
#include "language/tokens/name_table.h"
#include "quoly/quoly.h"
namespace tolvex {
struct varnode;
using varptr = varnode*;
struct varnode {
    tokentipe let;
    varptr next;
    quoly val;
    binding* bound;  // the compiled names that lead here (language/compile.h)
    binding* own;    // a compiled parameter: its binding
    varptr outer;    // and what that led to before the call
};
inline varptr var_garb = nullptr;
inline NameTable<varnode, &varnode::let, k_variable_buckets> sca_store;

/// *qp := location of the value, nil if there is no such variable. n: work location for names that stand for
/// a value without a location of its own.
void retrieve(tokentipe& name, quolyptr* qp, quolyptr n, FILE* inf, nameptr* flag);
/// *n := a copy of the value. A missing name is error 19, *n := 0 and false.
bool spec_retrieve(tokentipe& name, quolyptr n);
/// Creates or replaces; the value is used up; *p := the node.
void insert_var(tokentipe& name, quoly value, varptr* p);
/// *loc := nil, and a value of it that stands in another ring goes; the old value is given back, or inherited
/// by the innermost evaluator that holds it. Every replacement or deletion of a value that has a name goes
/// through here.
void free_value(quolyptr loc);
/// The same, but an old value that nobody inherits is returned; else nil.
quoly displace_value(quolyptr loc);
/// To be called before *loc is changed in place: if an evaluator holds it, it inherits the old value and *loc
/// becomes a copy.
void own_value(quolyptr loc);
/// The variable of that name, nil if there is none.
varptr find_var(tokentipe& name);
/// Unlinks the variable and gives it back with its value; false if there is none.
bool delete_var(tokentipe& name);
/// Calls f for the location of every stored value of the ring in force (variables, elements of arrays,
/// previous value): for changes of variables. The second: not for arrays.
void for_each_value(void (*f)(quolyptr value, void* context), void* context);
void for_each_scalar(void (*f)(quolyptr value, void* context), void* context);
/// The table is emptied, the bound of the process stack is found; pools and roots are made known to the
/// audit.
void init_symbols();
}  // namespace tolvex
