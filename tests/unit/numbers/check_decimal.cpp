// Decimal text there and back, over all sizes, with a plain method as the second opinion.
#include "language/tokens/scanner.h"
#include "numbers/decimal.h"
#include "numbers/decimal_io.h"
#include "numbers/num_compare.h"
#include "numbers/num_sign.h"
#include "numbers/ring_switch.h"
#include "tests/support/support.h"

#include <string>
#include <vector>
using namespace tolvex;
namespace {
using test::Rng;

std::string power_of_ten(size_t exponent) {
    std::string text(exponent + 1, '0');
    text[0] = '1';
    return text;
}

/// Digits biased to runs of 0 and 9 and to powers of ten.
std::string random_digits(Rng& rng, size_t longest) {
    size_t count = 1 + rng() % longest;
    std::string text;
    while (text.size() < count) {
        size_t run = 1 + rng() % 40;
        char c = "09"[rng() % 2];
        bool random = rng() % 2;
        for (size_t i = 0; i < run && text.size() < count; i++)
            text += random ? static_cast<char>('0' + rng() % 10) : c;
    }
    return rng() % 10 == 0 ? power_of_ten(count - 1) : text;
}

std::string without_zeros(const std::string& text) {
    size_t first = text.find_first_not_of('0');
    return first == std::string::npos ? "0" : text.substr(first);
}

std::string text_of_limbs(std::vector<limb> a) {
    std::vector<char> out(static_cast<size_t>(text_room(static_cast<int64_t>(a.size()))));
    int64_t count = limbs_to_text(out.data(), a.data(), static_cast<int64_t>(a.size()));
    return {out.data(), static_cast<size_t>(count)};
}

std::vector<limb> limbs_of_text(const std::string& text) {
    std::vector<limb> a(static_cast<size_t>(limbs_for_digits(static_cast<int64_t>(text.size()))));
    int64_t n = limbs_from_text(a.data(), text.data(), static_cast<int64_t>(text.size()));
    EXPECT_LE(n, static_cast<int64_t>(a.size()));
    a.resize(static_cast<size_t>(n));
    EXPECT_TRUE(n == 0 || a.back() != 0);
    return a;
}

/// The value by Horner's rule, digit after digit.
std::vector<limb> plain_value(const std::string& text) {
    std::vector<limb> a;
    for (char c : text) {
        unsigned __int128 carry = static_cast<unsigned>(c - '0');
        for (limb& l : a) {
            carry += static_cast<unsigned __int128>(l) * 10;
            l = static_cast<limb>(carry);
            carry >>= 64;
        }
        if (carry != 0) a.push_back(static_cast<limb>(carry));
    }
    return a;
}

PROPERTY(text_to_limbs_and_back, 300) {
    std::string text = random_digits(rng, round % 10 == 0 ? 6000 : 900);
    std::vector<limb> value = limbs_of_text(text);
    EXPECT_EQ(value, plain_value(text));
    EXPECT_EQ(text_of_limbs(value), without_zeros(text));
}

PROPERTY(limbs_to_text_and_back, 200) {
    std::vector<limb> a(1 + rng() % 300);
    for (limb& l : a) l = rng() % 4 == 0 ? 0 : rng() % 4 == 0 ? ~limb{0} : rng();
    if (rng() % 8 == 0) {  // a power of two
        for (limb& l : a) l = 0;
        a.back() = limb{1} << rng() % 64;
    }
    std::string text = text_of_limbs(a);
    std::vector<limb> back = limbs_of_text(text);
    back.resize(a.size(), 0);
    EXPECT_EQ(back, a);
    EXPECT_TRUE(text == "0" || text[0] != '0');
}

PROPERTY(powers_of_ten_and_their_neighbours, 120) {
    // the splits stand at 19 2^k digits: both sides of each are tried
    int64_t split = int64_t{19} << round % 9;
    int64_t count = split + static_cast<int64_t>(rng() % 5) - 2;
    std::string power = power_of_ten(static_cast<size_t>(count));
    EXPECT_EQ(text_of_limbs(limbs_of_text(power)), power);
    std::string nines(static_cast<size_t>(count), '9');
    EXPECT_EQ(text_of_limbs(limbs_of_text(nines)), nines);
    std::vector<limb> a = limbs_of_text(nines), b = limbs_of_text(power);
    size_t i = 0;
    a.resize(b.size(), 0);
    while (++a[i] == 0) i++;
    EXPECT_EQ(a, b) << "99..9 + 1";
}

PROPERTY(leading_zeros_do_not_matter, 60) {
    std::string text = random_digits(rng, 500);
    EXPECT_EQ(limbs_of_text(std::string(rng() % 700, '0') + text), limbs_of_text(text));
}

PROPERTY(showing_and_reading_a_number_gives_it_back, 200) {
    ring_enter_integers();
    std::string text = without_zeros(random_digits(rng, 700));
    bool tty = rng() % 2, negative = rng() % 2 && text != "0";
    uglyprint = rng() % 3 == 0;
    dispcutoff = static_cast<int16_t>(rng() % 100);
    number x = {}, back = {};
    std::vector<limb> a = limbs_of_text(text);
    chain_from_limbs(&x, a.data(), static_cast<int64_t>(a.size()), negative);
    char* shown = nullptr;
    size_t size = 0;
    FILE* f = open_memstream(&shown, &size);
    int32_t length = static_cast<int32_t>(rng() % 90);
    display(f, tty, 0, &x, &length, rng() % 2);
    fputs(";", f);
    fclose(f);
    f = fmemopen(shown, size, "r");
    nameptr flag = nullptr;
    int32_t count = 0;
    tt_flag = 0;
    scanner(f, &token, &flag);
    EXPECT_EQ(tok_is(token, "-"), negative);
    if (negative) scanner(f, &token, &flag);
    new_readin(f, &back, &flag, &count);
    fclose(f);
    tt_flag = 1;
    EXPECT_TRUE(tok_is(token, ";"));
    EXPECT_TRUE(num_check(&back));
    EXPECT_EQ(count, static_cast<int32_t>(text.size()));
    abs_value(&x);
    EXPECT_TRUE(equal(&x, &back));
    free(shown);
    special_free(&x), special_free(&back);
    uglyprint = 0;
    dispcutoff = 76;
}

PROPERTY(residues_and_words_of_long_constants, 200) {
    std::string text = random_digits(rng, 120) + ";";
    auto read_word = [&] {
        FILE* f = fmemopen(text.data(), text.size(), "r");
        nameptr flag = nullptr;
        number x = {};
        int32_t count = 0;
        scanner(f, &token, &flag);
        new_readin(f, &x, &flag, &count);
        fclose(f);
        return x.lint;
    };
    auto m = static_cast<int32_t>(2 + rng() % 2147483645);
    ring_enter_prime(m);
    uint64_t expected = 0, word = 0;
    for (size_t i = 0; i + 1 < text.size(); i++) {
        auto digit = static_cast<uint64_t>(text[i] - '0');
        expected = (expected * 10 + digit) % static_cast<uint64_t>(m);
        word = (word * 10 + digit) & UINT32_MAX;
    }
    EXPECT_EQ(read_word(), static_cast<int32_t>(expected));
    ring_enter_integers();
    lintmode = 1;
    warn_cnt = 30;
    EXPECT_EQ(read_word(), static_cast<int32_t>(static_cast<uint32_t>(word)));
    warn_cnt = 0;
    lintmode = 0;
}
}  // namespace
