#pragma once
/// language/builtin_table.h: built-in functions by name.
///
/// Purpose    the rows of the message file's table stand in the order of their ids; the search is binary
///            over a sorted index of them. An id leads to its routine through one table.
#include "language/builtin_args.h"
namespace tolvex {
using BuiltinRoutine = void (*)(BuiltinCall& call);
/// Sorts the index over the rows. After the data files have been read.
void init_builtins();
/// The id of the built-in of that name, or -1. At most 8 comparisons.
int32_t builtin_id(const tokentipe& name);

// The routines, one a built-in. Each finds the name as the current token, reads its arguments and leaves the
// token after them; *call.n is nil before and the value after.
void builtin_Array(BuiltinCall& call);
void builtin_ArrayExpression(BuiltinCall& call);
void builtin_Bell(BuiltinCall& call);
void builtin_Bin(BuiltinCall& call);
void builtin_Char(BuiltinCall& call);
void builtin_Chpoly(BuiltinCall& call);
void builtin_Coef(BuiltinCall& call);
void builtin_Cols(BuiltinCall& call);
void builtin_Colreduce(BuiltinCall& call);
void builtin_Content(BuiltinCall& call);
void builtin_Deg(BuiltinCall& call);
void builtin_Denom(BuiltinCall& call);
void builtin_Det(BuiltinCall& call);
void builtin_Detmin(BuiltinCall& call);
void builtin_Deriv(BuiltinCall& call);
void builtin_Divides(BuiltinCall& call);
void builtin_Egcd(BuiltinCall& call);
void builtin_Equal(BuiltinCall& call);
void builtin_FFLU(BuiltinCall& call);
void builtin_FFLUC(BuiltinCall& call);
void builtin_Factor(BuiltinCall& call);
void builtin_Fterms(BuiltinCall& call);
void builtin_Func(BuiltinCall& call);
void builtin_GCD(BuiltinCall& call);
void builtin_Hamilton(BuiltinCall& call);
void builtin_Height(BuiltinCall& call);
void builtin_Hermite(BuiltinCall& call);
void builtin_Ignore(BuiltinCall& call);
void builtin_Isprime(BuiltinCall& call);
void builtin_Irred(BuiltinCall& call);
void builtin_Iszero(BuiltinCall& call);
void builtin_Killden(BuiltinCall& call);
void builtin_LCM(BuiltinCall& call);
void builtin_Lcoef(BuiltinCall& call);
void builtin_Level(BuiltinCall& call);
void builtin_Lmon(BuiltinCall& call);
void builtin_Log(BuiltinCall& call);
void builtin_Lower(BuiltinCall& call);
void builtin_Lterm(BuiltinCall& call);
void builtin_Mcoef(BuiltinCall& call);
void builtin_Minors(BuiltinCall& call);
void builtin_Minpoly(BuiltinCall& call);
void builtin_Modmode(BuiltinCall& call);
void builtin_MSmith(BuiltinCall& call);
void builtin_Modulus(BuiltinCall& call);
void builtin_Monless(BuiltinCall& call);
void builtin_Mons(BuiltinCall& call);
void builtin_Move(BuiltinCall& call);
void builtin_Flcoef(BuiltinCall& call);
void builtin_Ncoef(BuiltinCall& call);
void builtin_Nmcoef(BuiltinCall& call);
void builtin_Normalize(BuiltinCall& call);
void builtin_Pseudet(BuiltinCall& call);
void builtin_Redrowech(BuiltinCall& call);
void builtin_Rowreduce(BuiltinCall& call);
void builtin_Ntcoef(BuiltinCall& call);
void builtin_Numb(BuiltinCall& call);
void builtin_Numcon(BuiltinCall& call);
void builtin_Numer(BuiltinCall& call);
void builtin_Numvars(BuiltinCall& call);
void builtin_Poly(BuiltinCall& call);
void builtin_Powermod(BuiltinCall& call);
void builtin_Prime(BuiltinCall& call);
void builtin_Pth(BuiltinCall& call);
void builtin_Rand(BuiltinCall& call);
void builtin_Rat(BuiltinCall& call);
void builtin_Rcoef(BuiltinCall& call);
void builtin_Remquot(BuiltinCall& call);
void builtin_Return(BuiltinCall& call);
void builtin_Smith(BuiltinCall& call);
void builtin_Sparse(BuiltinCall& call);
void builtin_Reverse(BuiltinCall& call);
void builtin_Rname(BuiltinCall& call);
void builtin_Sort(BuiltinCall& call);
void builtin_Splice(BuiltinCall& call);
void builtin_SDet(BuiltinCall& call);
void builtin_STrans(BuiltinCall& call);
void builtin_Split(BuiltinCall& call);
void builtin_Sqfree(BuiltinCall& call);
void builtin_Sqrt(BuiltinCall& call);
void builtin_Sum(BuiltinCall& call);
void builtin_Sumall(BuiltinCall& call);
void builtin_Swap(BuiltinCall& call);
void builtin_Switch(BuiltinCall& call);
void builtin_Synth(BuiltinCall& call);
void builtin_Terms(BuiltinCall& call);
void builtin_Totdeg(BuiltinCall& call);
void builtin_Time(BuiltinCall& call);
void builtin_Trace(BuiltinCall& call);
void builtin_True(BuiltinCall& call);
void builtin_Var(BuiltinCall& call);
void builtin_Vars(BuiltinCall& call);
void builtin_Zap(BuiltinCall& call);
void builtin_Zcoef(BuiltinCall& call);
void builtin_ZZ1(BuiltinCall& call);
void builtin_ZZ3(BuiltinCall& call);
}  // namespace tolvex
