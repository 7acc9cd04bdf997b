#pragma once
/// session/listing.h: functions, variables and arrays as text: for the displays `&f`, `&v` and for saved
/// sessions.
///
/// Purpose    a stored body is written back as source text from its token lists. What is written to a
///            file reads back to the same tokens: blanks stand wherever two tokens would run into one.
/// Invariant  a listing names what stood in the tables when it began; what an interrupt changes meanwhile
///            is looked up again before it is written.
/// Raises     129 what follows the listing commands; 222 no control statement; 303 the terminator of `&v`.
#include "language/functions.h"

#include <cstdio>
namespace tolvex {
/// Where a listing goes: on the terminal lines end in the continuation mark.
struct ListingSink {
    FILE* file;
    bool to_terminal;
};
/// The statements of a body, `indent` blanks in front of each line but the first.
void listform(const ListingSink& out, const formnode* body, int32_t indent);
/// The parameters of a function, separated by ",".
void listpars(const ListingSink& out, const paramnode* pars);
/// A function in full.
void big_write_p(const ListingSink& out, const char* name, const paramnode* pars, const formnode* body);

/// What an error does to a definition that is being read: writes where it stopped, for the errors that say
/// so.
void report_definition(Err code);

/// The command `&f`: the letter is the current token. Afterwards the token is "@".
void listfuncs(FILE* inf, nameptr* flag);
/// The functions in full, sorted by name, those of one name oldest first.
void save_functions(FILE* file);

/// `&v;` (values is true) and `&v:`: variables, then arrays.
void listvars(bool values);
/// The arrays, a line each.
void list_arrays();
/// The variables as statements: the global value of each name, residues from 0 on. A value that stands in
/// another ring cannot be written: its name is reported on the terminal.
void save_variables(FILE* file);
/// The arrays as statements, sorted by name, those of one name oldest first; parameters and places are left
/// out.
void save_arrays(FILE* file);
}  // namespace tolvex
