#pragma once
/// language/tokens/scanner.h: characters to tokens, from a stream or from a stored list.
///
/// Purpose    two scanners: scanner for the language, dumbscanner for literals and comments; and the history
///            ring that error reports print.
///
///   token      letter {letter | digit | "_"}, cut at 10 characters, or any other single character that is no
///              white space; the rest of a longer name is the next token.
///   line end   at the terminal an implied ";" (the line feed stays unread for the prompt step); in a file
///              white space. The continuation mark drops the rest of its line and the line end.
///   definition while one is typed (func_def_count above 0) a line end is given as ";" and taken by the next
///              read, so that it goes on in the next line; one that follows its last token stays for the
///              prompt step. semicount counts its empty lines.
///   end        ";" for ever; a reader that could loop asks at_end().
///   bytes      NUL, tab and carriage return count as blanks; bytes above 127 are tokens of their own.
///
/// Raises     nothing. An interrupt that comes while the terminal is awaited is taken here.
#include "language/tokens/token.h"

#include <cstdio>
namespace tolvex {
inline char leftover[4] = "";       // the character a name scan read too far; " ": white space followed
inline char continuation = '`';     // line-continuation character; blank under uglyprint   writers: &U
inline boolean tt_flag = 1;         // 1: reading the terminal, 0: a file
inline int32_t semicount = 0;       // consecutive empty lines in a definition
inline int32_t func_def_count = 0;  // depth of definitions being read
inline boolean line_crossed = 0;    // a line end stood in front of the current token: in a file, or continued
inline boolean lines_close = 0;     // a line end ends a number too: in the rows of an array literal
inline boolean line_end_given = 0;  // in a definition: the line feed that is next has been given as ";"
inline boolean line_start_awaited = 0;                           // the wait is for a new line of a statement
inline nameptr currentchar = nullptr;                            // the list node after the current token
inline nameptr startexpr = nullptr, prev_expr = nullptr;         // error-report cursors into token lists
inline nameptr start = nullptr, finish = nullptr, s2 = nullptr;  // history ring; finish nil: empty
inline constexpr int32_t k_ring_size = 60;

/// The next token into *tok: from the list when *flag is set, else from inf. At end of file ";".
void scanner(FILE* inf, tokentipe* tok, nameptr* flag);
/// How a line end stands in the token of a literal or comment.
inline constexpr char k_line_end = '\r';
/// One raw character as a token, blanks included; a line end (LF or CR LF) arrives as k_line_end and sets
/// *eoln. The mark of continuation counts only at the end of a line.
void dumbscanner(FILE* inf, tokentipe* tok, nameptr* flag, boolean* eoln);
/// The character of a text that dumbscanner has just read, a line end as LF. A stored list holds no CR but
/// those that stand for line ends.
inline unsigned char text_character(const tokentipe& tok, nameptr flag, boolean eoln) {
    return eoln || (flag != nullptr && tok_char(tok) == k_line_end) ? '\n' : tok_char(tok);
}

/// The next character of inf without reading it, EOF at the end. NUL counts as a blank.
int peek_char(FILE* inf);
/// Reads one character (NUL as a blank), EOF at the end.
int read_char(FILE* inf);
/// Puts back the character that was just read.
void unread_char(int c, FILE* inf);
/// The stream goes on with these characters, the rest of a line that was put aside. The text is used up: it
/// comes from malloc.
void resume_line(FILE* inf, char* text, size_t length);
/// Forgets them.
void drop_resumed_line();
/// True if some of them are still to be read.
bool reads_resumed_line();
/// Waits until the terminal has a character; the output is on the screen before. An interrupt acts at once.
void await_input(FILE* inf);
/// True if inf has no further character.
bool at_end(FILE* inf);
/// Reads and drops the rest of the line with its line feed.
void drop_line(FILE* inf);
/// The next token becomes the current one.
inline void next_token(FILE* inf, nameptr* flag) {
    if (*flag == nullptr) {
        scanner(inf, &token, flag);
        return;
    }
    nameptr p = *flag;
    if (p->next != nullptr) *flag = p = p->next;  // the end mark is given again and again
    token = p->let;
    currentchar = p->next;
}

/// One definition more, or one less, is being read.
void enter_definition();
void leave_definition();
/// What the reading of a definition line by line keeps; a command level reads definitions of its own
/// meanwhile.
struct DefinitionLines {
    boolean end_given, is_empty, crossed, crossed_ahead, literal_crossed;
    int32_t empty_lines, definitions;
};
/// Clears it; what it was is the answer.
DefinitionLines definition_lines_aside();
void resume_definition_lines(const DefinitionLines& lines);

/// Allocates the history ring.
void init_history();
/// Appends a token to the ring; the oldest of 60 gives way. A fixed small cost.
void history_add(const tokentipe& tok);
/// The same for one character of a literal or comment: it is printed exactly as it was read.
void history_add_raw(const tokentipe& tok);
/// Prints the ring on the standard output, as error reports show it: tokens one after another, a blank only
/// between a name and a following letter, digit or "_". No line end.
void history_print();
inline void history_clear() { finish = nullptr; }
}  // namespace tolvex
