#pragma once
/// language/tokens/token.h: the token, the token list, and the state of reading.
///
/// Purpose    a token is a text of at most 10 characters with the cached hash of a name. Stored
///            statements are lists of namenodes that end with the token "¥".
/// Invariant  `token` is one ahead: every reading routine finds its first token there and leaves there
///            the first token after what it has read. A cursor `flag` (pointer to a list pointer) that
///            points to nil means that tokens come from the stream.
#include "storage/pool.h"

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <type_traits>
namespace tolvex {
inline constexpr int32_t k_namelength = 10;
using nametype = unsigned char[k_namelength + 1];

/// The bytes behind the text are zero, so that names are compared by words.
struct tokentipe {
    nametype name;
    int16_t address;  // hash of the name; -1: not computed yet
};

struct quolynode;
using quoly = quolynode*;
using quolyptr = quoly*;

/// What is known of a node of a stored list: nothing; the name of a bound scalar, of a bound element with its
/// subscript, of a bound array; the first digit of a number that fits a word.
enum classtype : int32_t { zzero, one, two, three, word_literal };

struct namenode;
using nameptr = namenode*;
struct binding;
/// One element of a token list or of the history ring.
struct namenode {
    tokentipe let;
    bool compiled;   // bound by Compile
    bool space;      // a blank followed in the source
    classtype tipe;  // behind the bytes of the token without a gap: bodies are long
    int32_t word;    // word_literal: the number
    union {
        binding* bound;  // compiled: what the name stands for, shared by all nodes that name it
        nameptr last;    // word_literal: its last digit
    };
    nameptr next;
};
static_assert(sizeof(namenode) == 40 && std::is_trivially_destructible_v<namenode>);

struct comnode;
using comptr = comnode*;
/// A comment: its characters as a token list.
struct comnode {
    nameptr q;
    comptr next;
};

inline nameptr name_garb = nullptr;
inline tokentipe token = {};  // the current token              writers: scanner and all readers
inline constexpr char k_end_token[] = "\xC2\xA5";  // "¥": end of a stored statement

/// The text of a token as a C string.
inline const char* tok_text(const tokentipe& t) { return reinterpret_cast<const char*>(t.name); }
template <size_t size> inline bool tok_is(const tokentipe& t, const char (&text)[size]) {
    static_assert(size <= sizeof(nametype));
    return memcmp(t.name, text, size) == 0;
}
/// The same for a text that is not known when the program is compiled.
inline bool tok_is_text(const tokentipe& t, const char* text) { return strcmp(tok_text(t), text) == 0; }
inline bool same_name(const tokentipe& a, const tokentipe& b) {
    return memcmp(a.name, b.name, sizeof(nametype)) == 0;
}
/// The first character of a token, 0 if it is empty.
inline unsigned char tok_char(const tokentipe& t) { return t.name[0]; }
inline bool is_lower(unsigned char c) { return c >= 'a' && c <= 'z'; }
inline bool is_upper(unsigned char c) { return c >= 'A' && c <= 'Z'; }
inline bool is_digit(unsigned char c) { return c >= '0' && c <= '9'; }
/// t := the text (cut at 10 characters), its hash unknown.
void tok_set(tokentipe& t, const char* text);
/// The same for one character.
inline void tok_set_char(tokentipe& t, unsigned char c) {
    memset(t.name, 0, sizeof t.name);
    t.name[0] = c;
    t.address = -1;
}

/// t := the end mark.
inline void tok_set_end(tokentipe& t) {
    memset(t.name, 0, sizeof t.name);
    memcpy(t.name, k_end_token, sizeof k_end_token);
    t.address = -1;
}

/// Table index of a name: h := (h * 123 + c) mod n over its bytes, from 0; the empty name gives 0.
int16_t hash(const unsigned char* s, int32_t n);
inline constexpr int32_t k_variable_buckets = 151;
inline constexpr int32_t k_function_buckets = 71;
/// In stored lists the address of a built-in function's name is its id on top of this.
inline constexpr int16_t k_builtin_address = 1000;
}  // namespace tolvex
