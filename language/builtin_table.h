#pragma once
/// language/builtin_table.h: built-in functions by name.
///
/// Purpose    the rows of the message file's table stand in the order of their ids; the search is binary over
/// a
///            sorted index of them. An id leads to its routine through one table.
#include "language/builtin_args.h"
namespace tolvex {
using BuiltinRoutine = void (*)(BuiltinCall& call);
/// Sorts the index over the rows. After the data files have been read.
void init_builtins();
/// The id of the built-in of that name, or -1. At most 8 comparisons.
int32_t builtin_id(const tokentipe& name);

// The routines, one a built-in. Each finds the name as the current token, reads its arguments and leaves the
// token after them; *call.n is nil before and the value after.
#define TOLVEX_BUILTIN(name) void builtin_##name(BuiltinCall& call)
TOLVEX_BUILTIN(Bell);
TOLVEX_BUILTIN(Bin);
TOLVEX_BUILTIN(Char);
TOLVEX_BUILTIN(Coef);
TOLVEX_BUILTIN(Deg);
TOLVEX_BUILTIN(Denom);
TOLVEX_BUILTIN(Deriv);
TOLVEX_BUILTIN(Divides);
TOLVEX_BUILTIN(Equal);
TOLVEX_BUILTIN(Fterms);
TOLVEX_BUILTIN(GCD);
TOLVEX_BUILTIN(Height);
TOLVEX_BUILTIN(Ignore);
TOLVEX_BUILTIN(Isprime);
TOLVEX_BUILTIN(Killden);
TOLVEX_BUILTIN(Lcoef);
TOLVEX_BUILTIN(Level);
TOLVEX_BUILTIN(Lmon);
TOLVEX_BUILTIN(Log);
TOLVEX_BUILTIN(Lower);
TOLVEX_BUILTIN(Lterm);
TOLVEX_BUILTIN(Mcoef);
TOLVEX_BUILTIN(Modmode);
TOLVEX_BUILTIN(Modulus);
TOLVEX_BUILTIN(Monless);
TOLVEX_BUILTIN(Move);
TOLVEX_BUILTIN(Ncoef);
TOLVEX_BUILTIN(Nmcoef);
TOLVEX_BUILTIN(Ntcoef);
TOLVEX_BUILTIN(Numb);
TOLVEX_BUILTIN(Numcon);
TOLVEX_BUILTIN(Numer);
TOLVEX_BUILTIN(Numvars);
TOLVEX_BUILTIN(Powermod);
TOLVEX_BUILTIN(Prime);
TOLVEX_BUILTIN(Rand);
TOLVEX_BUILTIN(Rat);
TOLVEX_BUILTIN(Rcoef);
TOLVEX_BUILTIN(Remquot);
TOLVEX_BUILTIN(Splice);
TOLVEX_BUILTIN(Split);
TOLVEX_BUILTIN(Sqrt);
TOLVEX_BUILTIN(Swap);
TOLVEX_BUILTIN(Terms);
TOLVEX_BUILTIN(Time);
TOLVEX_BUILTIN(True);
TOLVEX_BUILTIN(Var);
TOLVEX_BUILTIN(Vars);
TOLVEX_BUILTIN(Zap);
TOLVEX_BUILTIN(Zcoef);
TOLVEX_BUILTIN(ZZ1);
TOLVEX_BUILTIN(ZZ3);
#undef TOLVEX_BUILTIN
}  // namespace tolvex
