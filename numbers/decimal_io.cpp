#include "numbers/decimal_io.h"

#include "language/tokens/scanner.h"
#include "numbers/decimal.h"
#include "numbers/digit_source.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_divide.h"
#include "numbers/num_mult.h"
#include "numbers/num_shift.h"
#include "numbers/num_sign.h"
#include "numbers/residue.h"
#include "storage/failure.h"

#include <cstring>
namespace tolvex {
namespace {
constexpr int32_t k_group_digits = 8;
constexpr int32_t k_tens = 100000000;

// ---- output --------------------------------------------------------------------------------------------

/// Where digits go, and how full the line is.
struct Sink {
    FILE* outf;
    bool tty;
    int32_t* mylength;
};

/// A line length of 0 means that lines have no end; under uglyprint they are not broken inside a number.
bool line_is_full(const Sink& sink) { return *sink.mylength >= dispcutoff && dispcutoff > 0 && !uglyprint; }

void break_if_full(const Sink& sink) {
    if (!line_is_full(sink)) return;
    if (sink.tty) {
        fprintf(sink.outf, " %c\n", continuation);
        *sink.mylength = 0;
    }
    putc(' ', sink.outf);
}

/// The groups of a fraction that are 0 before its first digit.
void show_zero_groups(const Sink& sink, int64_t count) {
    for (int64_t i = 0; i < count; i++) {
        if (i > 0) break_if_full(sink);
        fputs("00000000 ", sink.outf);
        *sink.mylength += k_group_digits;
    }
}

/// Groups of 8 digits after the first; a full line is broken before a group.
void show_groups(const Sink& sink, const char* digits, int64_t count) {
    const char* pending = digits;  // written when a break comes between
    const char* end = digits + count;
    for (; digits < end; digits += k_group_digits) {
        if (line_is_full(sink)) {
            fwrite(pending, 1, static_cast<size_t>(digits - pending), sink.outf);
            pending = digits;
            break_if_full(sink);
        }
        *sink.mylength += k_group_digits;
    }
    fwrite(pending, 1, static_cast<size_t>(end - pending), sink.outf);
}

/// The decimal text of y in scratch; *count digits.
char* text_of(const number* y, boolean base10_flag, int64_t* count) {
    if (!base10_flag) {
        limb* a = scratch_array<limb>(limbs_for(y->size));
        int64_t n = limbs_from_chain(a, y->head, y->size);
        auto* text = scratch_array<char>(text_room(n));
        *count = limbs_to_text(text, a, n);
        return text;
    }
    if (y->size > 1 && y->head->value == 0) tolvex_error("bad 0 node found in showint");
    int64_t room = static_cast<int64_t>(y->size) * k_group_digits;
    auto* text = scratch_array<char>(room);
    char* at = text;
    for (numptr p = y->head; p != nullptr; p = p->next, at += k_group_digits) {
        int32_t v = p->value < 0 ? -p->value : p->value;
        for (int32_t i = k_group_digits - 1; i >= 0; i--, v /= 10) at[i] = static_cast<char>('0' + v % 10);
    }
    while (room > 1 && *text == '0') {
        text++;
        room--;
    }
    *count = room;
    return text;
}
}  // namespace

void showint(FILE* outf, const number* y, boolean flag, boolean zeros_flag, boolean base10_flag,
             boolean indent_flag, boolean extra_space, boolean outf_is_tty, int32_t* mylength) {
    const Sink sink = {outf, outf_is_tty != 0, mylength};
    ScratchMark mark = scratch_mark();
    int64_t count = 0;
    const char* digits = text_of(y, base10_flag, &count);
    int64_t groups = (count + k_group_digits - 1) / k_group_digits;
    int64_t first = count - (groups - 1) * k_group_digits;
    bool negative = y->head->value < 0;
    if (zeros_flag) show_zero_groups(sink, disp_size - groups);
    if (!indent_flag && negative) {
        fputs(extra_space && !uglyprint ? "- " : "-", outf);
        *mylength += 1;
    }
    auto padding = static_cast<int32_t>(k_group_digits - first);
    if (!flag) {
        fprintf(outf, "%.*s", padding, "0000000");
    } else if (indent_flag) {
        fprintf(outf, "%*s%c", padding, "", negative ? '-' : ' ');
    }
    fwrite(digits, 1, static_cast<size_t>(first), outf);
    *mylength += flag && !indent_flag ? static_cast<int32_t>(first) : k_group_digits;
    show_groups(sink, digits + first, count - first);
    scratch_release(mark);
}

void display(FILE* outf, boolean outf_is_tty, boolean flag, const number* a, int32_t* mylength,
             boolean extra_space) {
    if (!lintmode) {
        showint(outf, a, 1, 0, 0, flag, extra_space, outf_is_tty, mylength);
        return;
    }
    int64_t v = modularmode ? shown_residue(a->lint) : a->lint;
    // the width is an estimate from the bit length, at most one off
    *mylength += v == 0 ? 1 : (3 * word_top_bit(v) + 5) / 10 + 1;
    if (extra_space && v < 0) {
        fputs(uglyprint ? "-" : "- ", outf);
        v = -v;
    }
    fprintf(outf, "%lld", static_cast<long long>(v));
}

void decimal_tail(FILE* outf, const number* numer, const number* denom, int32_t* mylength) {
    number whole = {}, rest = {}, divisor = {};
    if (disp_size < 1) return;
    spec_num_assign(denom, &divisor);
    if (chain_sign(numer) * chain_sign(denom) < 0) {
        putc('-', outf);
        *mylength += 1;
    }
    abs_val_num(numer, &rest);
    abs_value(&divisor);
    trunc_divide(&rest, &divisor, &whole, &rest);
    if (whole.head->value != 0) showint(outf, &whole, 1, 0, 0, 0, 0, 1, mylength);
    putc('.', outf);
    *mylength += 1;
    fast_mult(&rest, &disp_cons, &rest);
    trunc_divide(&rest, &divisor, &rest, nullptr);
    showint(outf, &rest, 0, 1, 0, 0, 0, 1, mylength);
    free_num(&whole);
    free_num(&rest);
    free_num(&divisor);
}

void set_disp_size(int32_t size) {
    constexpr int32_t k_large = 999;
    if (size < 0) size = 0;
    if (size > k_large) printf("Warning.  Very large disp_size.\n");
    if (!lintmode) {
        number power = {};  // the old values stay until the new power exists: it may not fit the memory
        spec_num_assign(&tens_base, &power);
        number_power(&power, size);
        special_free(&disp_cons);
        disp_cons = power;
    }
    disp_size = size;
}

// ---- input ---------------------------------------------------------------------------------------------

namespace {
/// Digits in scratch, growing.
struct Digits {
    char* at;
    int64_t count;
    int64_t room;
};

bool is_digit(int c) { return c >= '0' && c <= '9'; }

void append(Digits* digits, char c) {
    if (digits->count == digits->room) {
        auto* wider = scratch_array<char>(2 * digits->room);
        memcpy(wider, digits->at, static_cast<size_t>(digits->count));
        digits->at = wider;
        digits->room *= 2;
    }
    digits->at[digits->count++] = c;
}

/// Digits that stand next to each other in a stream are taken without the scanner, which would give each as a
/// token; the history gets those that it can hold.
void append_run(FILE* inf, Digits* digits) {
    int64_t start_of_run = digits->count;
    int c = read_char(inf);
    for (; is_digit(c); c = read_char(inf)) {
        append(digits, static_cast<char>(c));
        poll_every<k_digits_unpolled>(digits->count);
    }
    if (c != EOF) unread_char(c, inf);
    int64_t first = digits->count - start_of_run > k_ring_size ? digits->count - k_ring_size : start_of_run;
    tokentipe digit = {};
    digit.address = -1;
    for (int64_t i = first; i < digits->count; i++) {
        digit.name[0] = static_cast<unsigned char>(digits->at[i]);
        history_add(digit);
    }
}

/// All digits from the current token on; the token after them becomes current.
Digits read_digits(FILE* inf, nameptr* flag) {
    constexpr int64_t k_room = 256;
    Digits digits = {scratch_array<char>(k_room), 0, k_room};
    while (is_digit(tok_char(token))) {
        append(&digits, static_cast<char>(tok_char(token)));
        if (*flag == nullptr) append_run(inf, &digits);
        scanner(inf, &token, flag);
        if (line_crossed && lines_close && *flag == nullptr) break;
    }
    return digits;
}

int32_t reported_count(const Digits& digits) {
    return digits.count > INT32_MAX ? INT32_MAX : static_cast<int32_t>(digits.count);
}

/// Horner's rule over groups from the left, the first taking what is left over, in 64-bit words: step(r,
/// group).
template <class Step> uint64_t fold_groups(const Digits& digits, Step step) {
    uint64_t r = 0, group = 0;
    for (int64_t i = 0; i < digits.count; i++) {
        group = 10 * group + static_cast<uint64_t>(digits.at[i] - '0');
        if ((digits.count - 1 - i) % k_group_digits != 0) continue;
        r = step(r, group);
        group = 0;
    }
    return r;
}

/// A word; what does not fit is reported and wraps.
int32_t word_of(const Digits& digits) {
    constexpr uint64_t k_least_overflow = 2147483646;
    constexpr int32_t k_most_warnings = 30;
    bool overflow = false;
    uint64_t word = fold_groups(digits, [&](uint64_t r, uint64_t group) {
        r = r * k_tens + group;
        if (r >= k_least_overflow) overflow = true;
        return r & UINT32_MAX;
    });
    if (overflow && warn_cnt < k_most_warnings) {
        warn_cnt++;
        printf(" *** Warning. overflow while reading constant.\n");
    }
    return static_cast<int32_t>(static_cast<uint32_t>(word));
}

int32_t residue_of(const Digits& digits) {
    if (finf)  // the element with this code
        return residue_of_int(static_cast<int64_t>(fold_groups(
            digits, [](uint64_t r, uint64_t group) { return (r * k_tens + group) & UINT16_MAX; })));
    return static_cast<int32_t>(fold_groups(
        digits, [](uint64_t r, uint64_t group) -> uint64_t { return residue_reduce(r * k_tens + group); }));
}

void chain_of(const Digits& digits, imptr n) {
    limb* a = scratch_array<limb>(limbs_for_digits(digits.count));
    int64_t length = limbs_from_text(a, digits.at, digits.count);
    chain_replace(n, a, length, false);
}
}  // namespace

void readin(FILE* inf, imptr n, nameptr* flag, int32_t* outcount) {
    ScratchMark mark = scratch_mark();
    Digits digits = read_digits(inf, flag);
    decimal_chain_from_text(n, digits.at, digits.count, false);
    *outcount = reported_count(digits);
    scratch_release(mark);
}

void new_readin(FILE* inf, imptr n, nameptr* flag, int32_t* outcount) {
    ScratchMark mark = scratch_mark();
    Digits digits = read_digits(inf, flag);
    *outcount = reported_count(digits);
    if (modularmode)
        n->lint = residue_of(digits);
    else if (lintmode)
        n->lint = word_of(digits);
    else
        chain_of(digits, n);
    scratch_release(mark);
}
}  // namespace tolvex
