#include "language/tokens/scanner.h"

#include "language/tokens/token_list.h"
#include "storage/interrupt.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <sys/select.h>
namespace tolvex {
// ---- characters ----------------------------------------------------------------------------------------

// Classes of bytes, in one table, since every character of a program passes here. Bytes above 127 belong to
// none.
enum CharClass : uint8_t { k_letter = 1, k_digit_or_bar = 2, k_white = 4 };

struct CharTable {
    uint8_t of[256] = {};
    constexpr CharTable() {
        for (int c = 'a'; c <= 'z'; c++) of[c] = k_letter;
        for (int c = 'A'; c <= 'Z'; c++) of[c] = k_letter;
        for (int c = '0'; c <= '9'; c++) of[c] = k_digit_or_bar;
        of['_'] = k_digit_or_bar;
        of[0] = of[' '] = of['\t'] = of['\n'] = of['\r'] = k_white;
    }
};
static constexpr CharTable char_table;

static bool has_class(int c, uint8_t classes) { return c >= 0 && (char_table.of[c] & classes) != 0; }

namespace {
/// The rest of a line whose statement an interrupt had suspended: it comes before what its stream sends next.
/// While `text` is set the last character of the stream was read from it.
struct ResumedLine {
    FILE* stream;
    char* text;
    size_t at, length;
};
ResumedLine resumed = {};
}  // namespace

void drop_resumed_line() {
    free(resumed.text);
    resumed = {};
}

void resume_line(FILE* inf, char* text, size_t length) {
    drop_resumed_line();
    resumed = {inf, text, 0, length};
}

[[gnu::noinline]] static int resumed_char(FILE* inf) {
    if (inf == resumed.stream) {
        if (resumed.at < resumed.length) return static_cast<unsigned char>(resumed.text[resumed.at++]);
        drop_resumed_line();
    }
    return getc_unlocked(inf);
}

static inline int raw_char(FILE* inf) {
    return __builtin_expect(resumed.text != nullptr, 0) ? resumed_char(inf) : getc_unlocked(inf);
}

void unread_char(int c, FILE* inf) {
    if (inf == resumed.stream && resumed.at > 0)
        resumed.at--;
    else
        ungetc(c, inf);
}

bool reads_resumed_line() { return resumed.at < resumed.length; }

/// True if a read of inf may wait: nothing has been read ahead. Where the library does not tell, reads are
/// made at once, and an interrupt acts when the line has come.
static bool would_wait(FILE* inf) {
#if defined(__GLIBC__)
    return !reads_resumed_line() && inf->_IO_read_ptr == inf->_IO_read_end;
#else
    (void)inf;
    return false;
#endif
}

// The signal is blocked but for the wait itself, so that none is lost between the look at the flag and the
// wait.
void await_input(FILE* inf) {
    sigset_t interrupt, before;
    sigemptyset(&interrupt);
    sigaddset(&interrupt, SIGINT);
    int fd = fileno(inf);
    while (would_wait(inf)) {
        fflush(stdout);
        sigprocmask(SIG_BLOCK, &interrupt, &before);
        int ready = -1;
        if (!interrupt_pending) {
            fd_set input;
            FD_ZERO(&input);
            FD_SET(fd, &input);
            ready = pselect(fd + 1, &input, nullptr, nullptr, nullptr, &before);
        }
        sigprocmask(SIG_SETMASK, &before, nullptr);
        if (ready >= 0 || (!interrupt_pending && errno != EINTR)) return;
        poll_interrupt();
    }
}

int read_char(FILE* inf) {
    int c = raw_char(inf);
    return c == 0 ? ' ' : c;
}

int peek_char(FILE* inf) {
    int c = raw_char(inf);
    if (c != EOF) unread_char(c, inf);
    return c == 0 ? ' ' : c;
}

void drop_line(FILE* inf) {
    for (int c = raw_char(inf); c != EOF && c != '\n';) c = raw_char(inf);
}

/// The terminal is waited for at the start of a line, in the middle of a statement.
static void await_line(FILE* inf) {
    if (!tt_flag) return;
    line_start_awaited = 1;
    await_input(inf);
    line_start_awaited = 0;
}

static boolean literal_line_crossed = 0;  // the character of a literal or comment read last was a line end

bool at_end(FILE* inf) {
    if (literal_line_crossed) await_line(inf);
    return peek_char(inf) == EOF;
}

/// True if c is the mark that continues a statement. A blank stands for "no such mark".
static bool is_continuation(int c) {
    return c == static_cast<unsigned char>(continuation) && continuation != ' ';
}

/// The same; the rest of its line is dropped then.
static bool continues(FILE* inf, int c) {
    if (!is_continuation(c)) return false;
    drop_line(inf);
    semicount = 0;
    await_line(inf);
    return true;
}

// ---- the history ring ----------------------------------------------------------------------------------

void init_history() {
    if (start != nullptr) return;
    nameptr first = nullptr;
    newname(&first);
    nameptr last = first;
    for (int32_t i = 1; i < k_ring_size; i++) {
        newname(&last->next);
        last = last->next;
    }
    last->next = first;
    start = s2 = first;
    finish = nullptr;
}

/// The next place of the ring; the oldest token gives way.
static inline nameptr history_place() {
    if (finish == nullptr) return finish = start;
    finish = finish->next;
    if (finish == start) start = start->next;
    return finish;
}

// In the ring `space` marks a character of a literal or comment: it is printed as it was read.
void history_add(const tokentipe& tok) {
    nameptr p = history_place();
    p->let = tok;
    p->space = 0;
}

void history_add_raw(const tokentipe& tok) {
    nameptr p = history_place();
    p->let = tok;
    p->space = 1;
}

void history_print() {
    if (finish == nullptr) return;
    bool after_name = false;
    for (nameptr p = start;; p = p->next) {
        unsigned char c = tok_char(p->let);
        if (after_name && !p->space && has_class(c, k_letter | k_digit_or_bar)) putc_unlocked(' ', stdout);
        fputs(tok_text(p->let), stdout);
        after_name = !p->space && has_class(c, k_letter);
        if (p == finish) return;
    }
}

// ---- definitions over several lines --------------------------------------------------------------------

static boolean line_is_empty = 0;       // no token yet in the present line of a definition
static boolean line_crossed_ahead = 0;  // a continued line end stood behind the name read last

void enter_definition() {
    if (func_def_count++ > 0) return;
    semicount = 0;
    line_end_given = 0;
    line_is_empty = 0;
}

void leave_definition() {
    if (--func_def_count == 0) line_end_given = 0;
}

DefinitionLines definition_lines_aside() {
    DefinitionLines lines = {line_end_given,       line_is_empty, line_crossed,  line_crossed_ahead,
                             literal_line_crossed, semicount,     func_def_count};
    resume_definition_lines({});
    return lines;
}

void resume_definition_lines(const DefinitionLines& lines) {
    line_end_given = lines.end_given;
    line_is_empty = lines.is_empty;
    line_crossed = lines.crossed;
    line_crossed_ahead = lines.crossed_ahead;
    literal_line_crossed = lines.literal_crossed;
    semicount = lines.empty_lines;
    func_def_count = lines.definitions;
}

/// The line feed that the last token of a definition's line was given for.
static void take_line_end(FILE* inf) {
    raw_char(inf);
    line_end_given = 0;
    line_is_empty = 1;
    await_line(inf);
}

/// A line end at the terminal, which is unread again: ";" for the statement.
static int give_line_end(FILE* inf) {
    unread_char('\n', inf);
    if (func_def_count > 0) {
        if (line_is_empty) semicount++;
        line_end_given = 1;
    }
    return ';';
}

// ---- the scanners --------------------------------------------------------------------------------------

/// A token from the stored list *flag.
static void next_of_list(tokentipe* tok, nameptr* flag) {
    if ((*flag)->next != nullptr) *flag = (*flag)->next;  // the end mark is given again and again
    *tok = (*flag)->let;
    currentchar = (*flag)->next;
}

/// The first character of the next token: white space and continued line ends are passed over. A line end at
/// the terminal is ";" and stays unread for the prompt; the end of the file is EOF.
static int skip_white(FILE* inf) {
    for (;;) {
        int c = raw_char(inf);
        if (c == '\n' && tt_flag) return give_line_end(inf);
        bool continued = continues(inf, c);
        if (!has_class(c, k_white) && !continued) return c;
        if (c == '\n' || continued) line_crossed = 1;
    }
}

/// The rest of a name that begins with c. What stopped it goes to `leftover`; line ends and the end of the
/// file stay unread.
static void scan_name(FILE* inf, tokentipe* tok, int c) {
    int32_t length = 0;
    memset(tok->name, 0, sizeof tok->name);
    do {
        tok->name[length++] = static_cast<unsigned char>(c);
        c = raw_char(inf);
    } while (length < k_namelength && has_class(c, k_letter | k_digit_or_bar));
    if (c == '\n') unread_char(c, inf);
    bool continued = continues(inf, c);
    if (continued) line_crossed_ahead = 1;
    bool white = c == EOF || has_class(c, k_white) || continued;
    leftover[0] = white ? ' ' : static_cast<char>(c);
    leftover[1] = 0;
}

void scanner(FILE* inf, tokentipe* tok, nameptr* flag) {
    if (*flag != nullptr) {
        next_of_list(tok, flag);
        return;
    }
    if (line_end_given) take_line_end(inf);
    line_crossed = line_crossed_ahead;
    line_crossed_ahead = 0;
    int c = static_cast<unsigned char>(leftover[0]);
    if (c == 0 || c == ' ') c = skip_white(inf);
    literal_line_crossed = 0;
    if (!line_end_given) {
        line_is_empty = 0;
        semicount = 0;
    }
    tok->address = -1;
    if (has_class(c, k_letter)) {
        scan_name(inf, tok, c);
    } else {
        leftover[0] = 0;
        tok_set_char(*tok, static_cast<unsigned char>(c == EOF ? ';' : c));
        if (c == EOF && !tt_flag)
            return;  // at the terminal it ends the last line, in a file it leaves no trace
    }
    history_add(*tok);
}

/// True if a line end is what comes next. In front of anything else the mark of continuation is a character
/// of the text: the rest of the line would be lost without a word.
static bool ends_line(FILE* inf) {
    int c = peek_char(inf);
    return c == '\n' || c == '\r';
}

void dumbscanner(FILE* inf, tokentipe* tok, nameptr* flag, boolean* eoln) {
    *eoln = 0;
    if (*flag != nullptr) {
        next_of_list(tok, flag);
        return;
    }
    if (literal_line_crossed) await_line(inf);
    int c = read_char(inf);
    if (c == '\r' && peek_char(inf) == '\n') c = read_char(inf);  // CR LF is one line end
    if (is_continuation(c) && ends_line(inf) && continues(inf, c)) c = ' ';
    *eoln = literal_line_crossed = c == '\n';
    tok_set_char(*tok, static_cast<unsigned char>(c == EOF ? ';' : c));
    if (c != EOF) history_add_raw(*tok);
    if (*eoln) tok->name[0] = k_line_end;
}
}  // namespace tolvex
