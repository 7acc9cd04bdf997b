#pragma once
/// language/builtin_args.h: how built-in functions read their arguments.
///
/// Purpose    the parentheses, the values and locations, and the place of an optional result.
/// Invariant  arguments are held operands from the moment they are read: a statement inside a later argument
///            may change the variable of an earlier one. They are dropped in the reverse order.
/// Raises     177 no "("; 202 no ","; 1 no ")"; 207 a place for a result that is no variable.
#include "language/array_elements.h"
#include "language/evaluator.h"
#include "language/symbols.h"
namespace tolvex {
struct BuiltinCall {
    FILE* inf;
    quolyptr n;
    nameptr* flag;
    int32_t id;
};

/// Reads over the name and the "(".
void open_call(BuiltinCall& call, Err missing = Err::builtin_open_paren);
/// Reads over the ")".
void close_call(BuiltinCall& call);
/// True if "," follows; reads over it.
bool next_argument(BuiltinCall& call);
/// Reads over the "," that must follow.
void need_comma(BuiltinCall& call);

/// An argument: an expression, or "^x" for the value where it lives. Held from now on.
void get_the_data(BuiltinCall& call, Value* v);
/// The name, "(" and the first two arguments, of which the second stands behind a ",".
void open_with_two(BuiltinCall& call, Value* a, Value* b);
/// Lets the value go and gives it back.
void drop_data(Value* v);
/// The value of the function is that of the argument, a copy unless it is private; v is let go.
void take_argument(BuiltinCall& call, Value* v);
/// The only argument of a function, with its parentheses.
void standard_read(BuiltinCall& call, Value* v);
/// An integer argument, read with modular arithmetic suspended.
int32_t read_integer(BuiltinCall& call, Err not_a_number = Err::number_expected);

/// An argument that names a level: a variable, or its number, read with modular arithmetic suspended. 0 after
/// the error.
int32_t read_level(BuiltinCall& call, Err not_declared);

/// The place of an optional result: `x`, or `^x`. The name is kept, since the location may not last.
struct ResultPlace {
    tokentipe name;  // empty: none
    bool is_element;
    ElementTarget element;
};
void read_result_place(BuiltinCall& call, ResultPlace* place);
/// The location of a place whose value is read as well; nil if there is none in the ring in force (error
/// 121).
quolyptr place_to_read(ResultPlace* place);
/// The same for a place that is changed where it is; close_place afterwards.
quolyptr place_to_change(ResultPlace* place);
/// A sparse array keeps no 0.
void close_place(const ResultPlace& place);
/// The variable takes the value, which is used up; without a place it is given back.
void set_quotient(ResultPlace* place, quolyptr value);

/// "[a]": the name of an array that will be made. False after error 178, 40, 24, or, for the name of a
/// polynomial variable, polynomial_name.
bool read_array_name(BuiltinCall& call, tokentipe* name, Err polynomial_name = Err::polyvar_as_name);

/// Deg[a], from the "[": the number of elements.
void degree_of_array(BuiltinCall& call);
/// *n := a random value as Rand and (clocked) Randint give it.
void random_value(bool clocked, quolyptr n);

/// The value of the function: a word (reduced in modular mode), or a polynomial, which is used up.
void return_word(BuiltinCall& call, int64_t value);
void return_poly(BuiltinCall& call, polyptrr p);
/// The value v as a polynomial to be read: its numerator, or its number as a leaf in `leaf`. A denominator is
/// error `fraction`, and the answer nil.
poly polynomial_of(const quolynode* q, polynode* leaf, Err fraction);
/// The same without negative exponents: nil after error 186 or 198.
poly plain_polynomial(const quolynode* q, polynode* leaf);
}  // namespace tolvex
