// Numbers as text: fixed cases of conversion, printing, line breaks, decimal tails and reading in every mode.
#include "language/tokens/scanner.h"
#include "numbers/data_files.h"
#include "numbers/decimal.h"
#include "numbers/decimal_io.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_mult.h"
#include "numbers/num_sign.h"
#include "numbers/ring_switch.h"
#include "tests/support/support.h"

#include <cstdio>
#include <string>
#include <vector>
using namespace tolvex;
namespace {
/// Runs `write(file)` and returns what it wrote.
template <class Write> std::string written(Write write) {
    char* text = nullptr;
    size_t size = 0;
    FILE* f = open_memstream(&text, &size);
    write(f);
    fclose(f);
    std::string result(text, size);
    free(text);
    return result;
}

/// A chain from decimal text with an optional sign.
number chain(const std::string& text) {
    bool negative = text[0] == '-';
    const char* digits = text.c_str() + negative;
    auto count = static_cast<int64_t>(text.size()) - negative;
    number x = {};
    ScratchMark mark = scratch_mark();
    limb* a = scratch_array<limb>(limbs_for_digits(count));
    int64_t n = limbs_from_text(a, digits, count);
    chain_from_limbs(&x, a, n, negative);
    scratch_release(mark);
    EXPECT_TRUE(num_check(&x));
    return x;
}

struct Options {
    boolean flag = 1, zeros = 0, base10 = 0, indent = 0, extra_space = 0, tty = 1;
    int32_t length = 0;  // before; after it the length that showint left
};

std::string show(const number& x, Options& o) {
    return written([&](FILE* f) {
        showint(f, &x, o.flag, o.zeros, o.base10, o.indent, o.extra_space, o.tty, &o.length);
    });
}

std::string show(const std::string& text, Options o = {}) {
    number x = chain(text);
    std::string result = show(x, o);
    special_free(&x);
    return result;
}

std::vector<int32_t> digits_of(const number& x) {
    std::vector<int32_t> digits;
    for (numptr p = x.head; p != nullptr; p = p->next) digits.push_back(p->value);
    EXPECT_EQ(static_cast<size_t>(x.size), digits.size());
    return digits;
}

class Decimal : public ::testing::Test {
  protected:
    void SetUp() override {
        test::set_up_once();
        ring_enter_integers();
        uglyprint = 0;
        dispcutoff = 76;
        continuation = '`';
        warn_cnt = 0;
        tt_flag = 1;
        leftover[0] = 0;
        history_clear();
        set_disp_size(5);
    }
    void TearDown() override { SetUp(); }
};

TEST_F(Decimal, SmallNumbers) {
    EXPECT_EQ(show("0"), "0");
    EXPECT_EQ(show("7"), "7");
    EXPECT_EQ(show("-7"), "-7");
    EXPECT_EQ(show("99999999"), "99999999");
    EXPECT_EQ(show("100000000"), "100000000") << "the second group has 7 leading zeros before its digit 0";
    EXPECT_EQ(show("-268435456"), "-268435456");
    EXPECT_EQ(show("18446744073709551615"), "18446744073709551615");
    EXPECT_EQ(show("18446744073709551616"), "18446744073709551616");
    EXPECT_EQ(show("10000000000000000000"), "10000000000000000000");
    EXPECT_EQ(show("100000000000000000000000000000000000000"), "100000000000000000000000000000000000000");
}

TEST_F(Decimal, BothRoutesToADecimalChainAgree) {
    for (int digits : {1, 2, 15, 16, 40, 200}) {
        number x = {}, base = {}, a = {}, b = {};
        special_set(k_max_digit, &x);
        special_set_2(k_base / 2, 2, &base);
        number one_less = {};
        special_set(k_max_digit, &one_less);
        for (int i = 1; i < digits; i++) {
            number shifted = {};
            multiply(&x, &base, &shifted);
            special_free(&x);
            x = shifted;
            x.tail->value = k_max_digit;
        }
        ASSERT_EQ(x.size, digits);
        make_base_10(&x, &a);
        verybig_base_10(x.head, x.tail, x.size, &b);
        EXPECT_TRUE(spec_equal(&a, &b));
        Options binary, decimal;
        decimal.base10 = 1;
        dispcutoff = 0;
        EXPECT_EQ(show(x, binary), show(a, decimal));
        EXPECT_EQ(binary.length, decimal.length);
        for (number* n : {&x, &base, &a, &b, &one_less}) special_free(n);
    }
}

TEST_F(Decimal, PowersOf228MatchTheTable) {
    number x = {}, base = {}, ten = {};
    special_set_2(k_base / 2, 2, &base);
    spec_num_assign(&base, &x);
    for (int i = 0; i < 130; i++) {
        make_base_10(&x, &ten);
        ASSERT_TRUE(spec_equal(&ten, &two_28[i])) << i;
        fast_mult(&x, &base, &x);
    }
    special_free(&x), special_free(&base), special_free(&ten);
}

TEST_F(Decimal, DecimalChainsAreRightAlignedAndSigned) {
    number x = chain("-123456789"), ten = {};
    make_base_10(&x, &ten);
    EXPECT_EQ(digits_of(ten), (std::vector<int32_t>{-1, -23456789}));
    make_base_10(&x, &x);
    EXPECT_EQ(digits_of(x), (std::vector<int32_t>{-1, -23456789})) << "the result may be the operand";
    special_free(&x), special_free(&ten);
}

TEST_F(Decimal, TheSourceChainIsNotTouched) {
    number x = chain(std::string(500, '7')), copy = {}, ten = {};
    spec_num_assign(&x, &copy);
    numptr head = x.head, tail = x.tail;
    verybig_base_10(x.head, x.tail, x.size, &ten);
    EXPECT_EQ(x.head, head);
    EXPECT_EQ(x.tail, tail);
    EXPECT_TRUE(spec_equal(&x, &copy));
    special_free(&x), special_free(&copy), special_free(&ten);
}

TEST_F(Decimal, SignAndLength) {
    Options o;
    o.extra_space = 1;
    EXPECT_EQ(show("-12", o), "- 12");
    number x = chain("-12");
    EXPECT_EQ(show(x, o), "- 12");
    EXPECT_EQ(o.length, 3) << "the sign counts 1, its blank nothing";
    uglyprint = 1;
    EXPECT_EQ(show("-12", o), "-12");
    special_free(&x);
}

TEST_F(Decimal, AFullTerminalLineIsContinued) {
    std::string nines(100, '9');  // groups: 4, then 12 of 8
    std::string first = nines.substr(0, 76), rest = nines.substr(76);
    EXPECT_EQ(show(nines), first + " `\n " + rest);
    Options o;
    o.length = 70;
    EXPECT_EQ(show("123456789012345678901234", o), "12345678 `\n 9012345678901234")
        << "never before the first group";
    number x = chain(nines);
    Options fresh;
    show(x, fresh);
    EXPECT_EQ(fresh.length, 24);
    special_free(&x);
    continuation = '\\';
    EXPECT_EQ(show(nines), first + " \\\n " + rest);
}

TEST_F(Decimal, AFileGetsABlankBeforeEachFurtherGroup) {
    Options o;
    o.tty = 0;
    std::string nines(100, '9');
    EXPECT_EQ(show(nines, o), nines.substr(0, 76) + " 99999999 99999999 99999999");
}

TEST_F(Decimal, UglyprintNeverBreaksANumber) {
    uglyprint = 1;
    Options o;
    for (boolean tty : {0, 1}) {
        o.tty = tty;
        EXPECT_EQ(show(std::string(500, '9'), o), std::string(500, '9'));
    }
}

TEST_F(Decimal, LineLengthZeroMeansNoBreaks) {
    dispcutoff = 0;
    EXPECT_EQ(show(std::string(500, '9')), std::string(500, '9'));
}

TEST_F(Decimal, PaddedForms) {
    Options indent;
    indent.indent = 1;
    EXPECT_EQ(show("123", indent), "      123") << "5 blanks, and a blank for the sign";
    EXPECT_EQ(show("-123", indent), "     -123");
    EXPECT_EQ(show("12345678", indent), " 12345678");
    number x = chain("123");
    show(x, indent);
    EXPECT_EQ(indent.length, 8);
    Options zeros;
    zeros.flag = 0;
    EXPECT_EQ(show("123", zeros), "00000123");
    EXPECT_EQ(show("12345678900", zeros), "0000012345678900");
    special_free(&x);
}

TEST_F(Decimal, FractionDigitsBeginWithZeroGroups) {
    set_disp_size(3);
    Options o;
    o.flag = 0;
    o.zeros = 1;
    EXPECT_EQ(show("5", o), "00000000 00000000 00000005");
    EXPECT_EQ(show("123456789", o), "00000000 0000000123456789");
    EXPECT_EQ(show("0", o), "00000000 00000000 00000000");
    EXPECT_EQ(show("12345678901234567890123", o), "012345678901234567890123");
    set_disp_size(12);
    o.tty = 0;
    EXPECT_EQ(show("5", o).substr(0, 90), "00000000 00000000 00000000 00000000 00000000 "
                                          "00000000 00000000 00000000 00000000 00000000 ");
    EXPECT_EQ(show("5", o).substr(90), " 00000000 00000005");
}

TEST_F(Decimal, AZeroHeadIsAnInternalFault) {
    number x = {};
    special_set(5, &x);
    numptr head = newnum();
    head->value = 0;
    head->next = x.head;
    x.head = head;
    x.size = 2;
    Options o;
    o.base10 = 1;
    FILE* sink = fopen("/dev/null", "w");
    ScratchMark mark = scratch_mark();
    EXPECT_TRUE(RAISES(showint(sink, &x, 1, 0, 1, 0, 0, 1, &o.length)));
    scratch_release(mark);
    fclose(sink);
    EXPECT_STREQ(test::caught.text, "bad 0 node found in showint");
    special_free(&x);
}

std::string tail_of(const std::string& numer, const std::string& denom, int32_t size) {
    set_disp_size(size);
    number n = chain(numer), d = chain(denom);
    int32_t length = 0;
    std::string result = written([&](FILE* f) { decimal_tail(f, &n, &d, &length); });
    special_free(&n), special_free(&d);
    return result;
}

TEST_F(Decimal, TailsOfFractions) {
    EXPECT_EQ(tail_of("3", "7", 1), ".42857142");
    EXPECT_EQ(tail_of("-3", "7", 1), "-.42857142");
    EXPECT_EQ(tail_of("22", "7", 1), "3.14285714");
    EXPECT_EQ(tail_of("-22", "7", 2), "-3.1428571428571428");
    EXPECT_EQ(tail_of("1", "3000000000", 2), ".00000000 03333333");
    EXPECT_EQ(tail_of("2", "3", 1), ".66666666") << "cut, not rounded";
    EXPECT_EQ(tail_of("1", "1000000000", 1), ".00000000");
    EXPECT_EQ(tail_of("123456789012345", "2", 1), "61728394506172.50000000");
    EXPECT_EQ(tail_of("1", "3", 0), "") << "0 switches decimals off";
}

TEST_F(Decimal, SizeOfDecimals) {
    set_disp_size(-4);
    EXPECT_EQ(disp_size, 0);
    EXPECT_TRUE(is_longint(&disp_cons, 1));
    set_disp_size(2);
    EXPECT_TRUE(spec_equal(&disp_cons, &two_tensbase));
    testing::internal::CaptureStdout();
    set_disp_size(999);
    set_disp_size(1000);
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Warning.  Very large disp_size.\n");
    EXPECT_EQ(disp_size, 1000) << "the value is used all the same";
    lintmode = 1;
    set_disp_size(1);
    lintmode = 0;
    EXPECT_EQ(disp_size, 1);
    EXPECT_GT(disp_cons.size, 900) << "words have no decimals: the power is left alone";
}

// ---- display -------------------------------------------------------------------------------------------

std::string display_word(int32_t v, boolean extra_space, int32_t* length) {
    number x = {};
    x.lint = v;
    *length = 0;
    return written([&](FILE* f) { display(f, 1, 0, &x, length, extra_space); });
}

TEST_F(Decimal, DisplayOfWordsAndResidues) {
    int32_t length;
    lintmode = 1;
    EXPECT_EQ(display_word(0, 0, &length), "0");
    EXPECT_EQ(length, 1);
    EXPECT_EQ(display_word(-5, 0, &length), "-5");
    EXPECT_EQ(length, 2) << "an estimate from the bits: one too many, the sign not counted";
    EXPECT_EQ(display_word(-5, 1, &length), "- 5");
    EXPECT_EQ(display_word(INT32_MIN, 1, &length), "- 2147483648");
    EXPECT_EQ(length, 10);
    uglyprint = 1;
    EXPECT_EQ(display_word(-5, 1, &length), "-5");
    uglyprint = 0;
    ring_enter_prime(7);
    EXPECT_EQ(display_word(6, 0, &length), "-1");
    EXPECT_EQ(length, 1);
    EXPECT_EQ(display_word(3, 0, &length), "3");
    EXPECT_EQ(display_word(4, 1, &length), "- 3");
    alt_form_display = 0;
    EXPECT_EQ(display_word(6, 0, &length), "6");
    alt_form_display = 1;
    set_modulus(256);
    f256 = finf = 1;
    EXPECT_EQ(display_word(255, 0, &length), "255") << "no symmetric form in a table field";
}

TEST_F(Decimal, DisplayOfChains) {
    number x = chain("-12345678901234567890");
    int32_t length = 0;
    EXPECT_EQ(written([&](FILE* f) { display(f, 1, 0, &x, &length, 1); }), "- 12345678901234567890");
    EXPECT_EQ(length, 21);
    EXPECT_EQ(written([&](FILE* f) { display(f, 1, 1, &x, &length, 0); }), "    -12345678901234567890");
    special_free(&x);
}

TEST_F(Decimal, WidthEstimateIsAtMostOneOff) {
    lintmode = 1;
    for (int64_t v = 1; v <= INT32_MAX; v = v * 11 / 10 + 1) {
        int32_t length;
        auto digits = static_cast<int32_t>(display_word(static_cast<int32_t>(v), 0, &length).size());
        ASSERT_LE(std::abs(length - digits), 1) << v;
    }
}

// ---- reading -------------------------------------------------------------------------------------------

/// What reading `text` gives: the token after the number, and the count of digits.
struct Reading {
    std::string next, rest;
    int32_t count = -1;
};

template <class Read> Reading read_text(const std::string& text, Read read) {
    FILE* f = fmemopen(const_cast<char*>(text.c_str()), text.size(), "r");
    nameptr flag = nullptr;
    Reading r;
    leftover[0] = 0;
    scanner(f, &token, &flag);
    read(f, &flag, &r.count);
    r.next = tok_text(token);
    for (int c = getc(f); c != EOF; c = getc(f)) r.rest += static_cast<char>(c);
    fclose(f);
    return r;
}

std::vector<int32_t> groups_of(const std::string& text, Reading* reading = nullptr) {
    number x = {};
    Reading r = read_text(text, [&](FILE* f, nameptr* flag, int32_t* count) { readin(f, &x, flag, count); });
    if (reading != nullptr) *reading = r;
    std::vector<int32_t> digits = digits_of(x);
    special_free(&x);
    return digits;
}

TEST_F(Decimal, GroupsAreReadFromTheRight) {
    Reading r;
    EXPECT_EQ(groups_of("123456789;", &r), (std::vector<int32_t>{1, 23456789}));
    EXPECT_EQ(r.count, 9);
    EXPECT_EQ(r.next, ";");
    EXPECT_EQ(groups_of("000000000000;", &r), (std::vector<int32_t>{0}));
    EXPECT_EQ(r.count, 12);
    EXPECT_EQ(groups_of("00000000123;", &r), (std::vector<int32_t>{123}));
    EXPECT_EQ(r.count, 11);
    EXPECT_EQ(groups_of("0000000012345678901;"), (std::vector<int32_t>{123, 45678901}));
    EXPECT_EQ(groups_of("12345678;"), (std::vector<int32_t>{12345678}));
    EXPECT_EQ(groups_of("100000000;"), (std::vector<int32_t>{1, 0}));
}

TEST_F(Decimal, DigitsJoinAcrossBlanksAndContinuedLines) {
    Reading r;
    EXPECT_EQ(groups_of("1 2\t3;", &r), (std::vector<int32_t>{123}));
    EXPECT_EQ(r.count, 3);
    EXPECT_EQ(groups_of("12 ` rest of the line\n34x;", &r), (std::vector<int32_t>{1234}));
    EXPECT_EQ(r.next, "x");
    EXPECT_EQ(groups_of("12\n34;", &r), (std::vector<int32_t>{12}))
        << "at the terminal a line end ends the number";
    EXPECT_EQ(r.next, ";");
    EXPECT_EQ(r.rest, "\n34;") << "the line end stays for the prompt";
    tt_flag = 0;
    EXPECT_EQ(groups_of("12\n34;", &r), (std::vector<int32_t>{1234}));
    EXPECT_EQ(r.next, ";");
    EXPECT_EQ(groups_of("12", &r), (std::vector<int32_t>{12}));
    EXPECT_EQ(r.next, ";") << "at the end of the file";
    uglyprint = 1;
    continuation = ' ';
    EXPECT_EQ(groups_of("12`34;", &r), (std::vector<int32_t>{12}));
    EXPECT_EQ(r.next, "`");
    EXPECT_EQ(r.rest, "34;");
}

TEST_F(Decimal, TheFirstDigitMayHaveStoppedAName) {
    Reading r;
    number x = {};
    std::string text = "abcdefghij567 8;";
    FILE* f = fmemopen(text.data(), text.size(), "r");
    nameptr flag = nullptr;
    scanner(f, &token, &flag);
    EXPECT_STREQ(tok_text(token), "abcdefghij");
    scanner(f, &token, &flag);
    readin(f, &x, &flag, &r.count);
    fclose(f);
    EXPECT_EQ(digits_of(x), (std::vector<int32_t>{5678}));
    special_free(&x);
}

std::string history() {
    testing::internal::CaptureStdout();
    history_print();
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

TEST_F(Decimal, TheHistoryHoldsTheLastSixtyTokens) {
    groups_of("12 345;");
    EXPECT_EQ(history(), "12345;");
    history_clear();
    std::string digits;
    for (int i = 0; i < 200; i++) digits += static_cast<char>('0' + i * 7 % 10);
    groups_of(digits + ";");
    EXPECT_EQ(history(), digits.substr(141) + ";");
}

int32_t word_of(const std::string& text) {
    number x = {};
    read_text(text, [&](FILE* f, nameptr* flag, int32_t* count) { new_readin(f, &x, flag, count); });
    EXPECT_EQ(x.size, 0) << "no chain is built";
    return x.lint;
}

TEST_F(Decimal, ResiduesAreFoldedWithoutAChain) {
    ring_enter_prime(7);
    EXPECT_EQ(word_of("100000000;"), 2);
    EXPECT_EQ(word_of("0;"), 0);
    EXPECT_EQ(word_of("7;"), 0);
    ring_enter_prime(2147483629);
    EXPECT_EQ(word_of("2147483629;"), 0);
    EXPECT_EQ(word_of("123456789012345678901234567890;"), 1813104648);
}

TEST_F(Decimal, ALiteralOfATableFieldIsACode) {
    ring_enter_prime(2);
    f256 = finf = 1;
    set_modulus(256);
    EXPECT_EQ(word_of("255;"), 255);
    EXPECT_EQ(word_of("256;"), 0);
    EXPECT_EQ(word_of("100000000000000000001;"), 1);
    f256 = 0;
    f2t16 = 1;
    set_modulus(65536);
    EXPECT_EQ(word_of("65537;"), 1);
    EXPECT_EQ(word_of("123456789123456789;"), static_cast<int32_t>(123456789123456789 % 65536));
}

TEST_F(Decimal, WordsThatDoNotFitAreReported) {
    lintmode = 1;
    auto reported = [](const std::string& text, int32_t* value) {
        testing::internal::CaptureStdout();
        *value = word_of(text);
        fflush(stdout);
        std::string out = testing::internal::GetCapturedStdout();
        EXPECT_TRUE(out.empty() || out == " *** Warning. overflow while reading constant.\n");
        return !out.empty();
    };
    int32_t value;
    EXPECT_FALSE(reported("2147483645;", &value));
    EXPECT_EQ(value, 2147483645);
    EXPECT_TRUE(reported("2147483646;", &value));
    EXPECT_EQ(value, 2147483646);
    EXPECT_TRUE(reported("4294967297;", &value));
    EXPECT_EQ(value, 1) << "the wrapped word";
    EXPECT_TRUE(reported("100000000000000000000;", &value));
    EXPECT_EQ(value, 1661992960);
    EXPECT_FALSE(reported("00000000000000000000000000017;", &value)) << "leading zeros are no overflow";
    EXPECT_EQ(value, 17);
    warn_cnt = 29;
    EXPECT_TRUE(reported("9999999999;", &value));
    EXPECT_FALSE(reported("9999999999;", &value)) << "30 warnings are enough";
    EXPECT_EQ(warn_cnt, 30);
}

TEST_F(Decimal, AStoredListIsReadTokenByToken) {
    {
        nameptr head = nullptr, last = nullptr;
        for (char c : std::string("31415926535897;")) {
            auto* p = new namenode();
            p->let.name[0] = static_cast<unsigned char>(c);
            (head == nullptr ? head : last->next) = p;
            last = p;
        }
        nameptr flag = head;
        token = head->let;
        number x = {};
        int32_t count = 0;
        new_readin(stdin, &x, &flag, &count);
        EXPECT_EQ(count, 14);
        EXPECT_STREQ(tok_text(token), ";");
        Options o;
        EXPECT_EQ(show(x, o), "31415926535897");
        special_free(&x);
        while (head != nullptr) {
            last = head->next;
            delete head;
            head = last;
        }
    }
}

TEST_F(Decimal, AnOldChainIsReplaced) {
    number x = chain(std::string(300, '8'));
    Reading r =
        read_text("15)", [&](FILE* f, nameptr* flag, int32_t* count) { new_readin(f, &x, flag, count); });
    EXPECT_EQ(r.next, ")");
    EXPECT_TRUE(is_longint(&x, 15));
    special_free(&x);
}
}  // namespace
