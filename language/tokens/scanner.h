#pragma once
/// language/tokens/scanner.h: characters to tokens, from a stream or from a stored list.
///
/// Purpose    three scanners: scanner for the language, dumbscanner for literals and comments, spec_scanner
/// for the
///            items of array literals; and the history ring that error reports print.
#include "language/tokens/token.h"

#include <cstdio>
namespace tolvex {
inline char leftover[4] = "";          // the character a name scan read too far; " ": white space followed
inline char continuation = '`';        // line-continuation character; blank under uglyprint   writers: &U
inline boolean tt_flag = 1;            // 1: reading the terminal, 0: a file
inline int32_t semicount = 0;          // consecutive empty lines in a definition
inline nameptr currentchar = nullptr;  // the list node after the current token
inline nameptr startexpr = nullptr, prev_expr = nullptr;         // error-report cursors into token lists
inline nameptr start = nullptr, finish = nullptr, s2 = nullptr;  // history ring; finish nil: empty
inline constexpr int32_t k_ring_size = 60;

/// The next token into *tok: from the list when *flag is set, else from inf. At end of file ";".
void scanner(FILE* inf, tokentipe* tok, nameptr* flag);
/// One raw character as a token; a line feed arrives as character 13 and sets *eoln.
void dumbscanner(FILE* inf, tokentipe* tok, nameptr* flag, boolean* eoln);
/// As scanner, a name may go on across white space; *eoln tells that a line was crossed.
void spec_scanner(FILE* inf, tokentipe* tok, nameptr* flag, boolean* eoln);

/// The next character of inf without reading it, EOF at the end. NUL counts as a blank.
int peek_char(FILE* inf);
/// Reads one character (NUL as a blank), EOF at the end.
int read_char(FILE* inf);
/// True if inf has no further character.
bool at_end(FILE* inf);
/// Reads and drops the rest of the line with its line feed.
void drop_line(FILE* inf);

/// Allocates the history ring.
void init_history();
/// Appends a token to the ring. space_before: white space stood in front of it in the source.
void history_add(const tokentipe& tok);
/// Prints the ring on the standard output, as error reports show it.
void history_print();
inline void history_clear() { finish = nullptr; }
}  // namespace tolvex
