// Tokens, line ends, names, literals and the history ring, from memory streams.
#include "language/tokens/scanner.h"
#include "language/tokens/token_list.h"
#include "tests/support/support.h"

#include <cstdio>
#include <string>
#include <vector>
using namespace tolvex;

namespace {
struct Scan : ::testing::Test {
    FILE* in = nullptr;
    nameptr from_stream = nullptr;
    void SetUp() override {
        test::set_up_once();
        history_clear();
        leftover[0] = 0;
        continuation = '`';
        tt_flag = 1;
        semicount = 0;
    }
    void TearDown() override {
        if (in != nullptr) fclose(in);
        continuation = '`';
        tt_flag = 1;
    }
    void source(const std::string& text) {
        if (in != nullptr) fclose(in);
        in = tmpfile();
        fwrite(text.data(), 1, text.size(), in);
        rewind(in);
    }
    std::string next() {
        tokentipe t;
        scanner(in, &t, &from_stream);
        EXPECT_EQ(t.address, -1);
        return tok_text(t);
    }
    std::vector<std::string> tokens(const std::string& text, int n) {
        source(text);
        std::vector<std::string> out;
        for (int i = 0; i < n; i++) out.push_back(next());
        return out;
    }
    using Texts = std::vector<std::string>;
};

std::string printed_history() {
    fflush(stdout);
    ::testing::internal::CaptureStdout();
    history_print();
    fflush(stdout);
    return ::testing::internal::GetCapturedStdout();
}
}  // namespace

TEST_F(Scan, names_digits_and_single_characters) {
    EXPECT_EQ(tokens("x1_y:= 12+Foo(\xC3", 10),
              (Texts{"x1_y", ":", "=", "1", "2", "+", "Foo", "(", "\xC3", ";"}));
}

TEST_F(Scan, name_is_cut_at_ten_characters) {
    EXPECT_EQ(tokens("abcdefghijklm n", 3), (Texts{"abcdefghij", "klm", "n"}));
    EXPECT_EQ(tokens("abcdefghij5", 2), (Texts{"abcdefghij", "5"}));
    EXPECT_EQ(tokens("abcdefghij+", 2), (Texts{"abcdefghij", "+"}));
    EXPECT_EQ(tokens("abcdefghij;", 3), (Texts{"abcdefghij", ";", ";"}));
}

TEST_F(Scan, leftover_holds_what_stopped_a_name) {
    source("ab+cd ef\tgh\r\n");
    next();
    EXPECT_STREQ(leftover, "+");
    next();
    EXPECT_STREQ(leftover, "");
    next();
    EXPECT_STREQ(leftover, " ");
    next();
    EXPECT_STREQ(leftover, " ");
    EXPECT_EQ(next(), "gh");
    EXPECT_STREQ(leftover, " ");
}

TEST_F(Scan, terminal_line_end_is_a_semicolon_and_stays_unread) {
    source("2+x \t\nrest");
    EXPECT_EQ(next(), "2");
    EXPECT_EQ(next(), "+");
    EXPECT_EQ(next(), "x");
    EXPECT_EQ(next(), ";");
    EXPECT_EQ(next(), ";");
    EXPECT_EQ(peek_char(in), '\n');
    drop_line(in);
    EXPECT_EQ(next(), "rest");
}

TEST_F(Scan, empty_line_at_the_terminal) {
    source("\n");
    EXPECT_EQ(next(), ";");
    EXPECT_EQ(read_char(in), '\n');
    EXPECT_TRUE(at_end(in));
}

TEST_F(Scan, file_line_ends_are_white_space) {
    tt_flag = 0;
    EXPECT_EQ(tokens("1\n2\n;\n x\ny", 6), (Texts{"1", "2", ";", "x", "y", ";"}));
    source("x\n;");
    next();
    EXPECT_STREQ(leftover, " ");
}

TEST_F(Scan, carriage_returns_tabs_and_nul_are_blanks) {
    EXPECT_EQ(tokens("x\t+ 1\r\n", 4), (Texts{"x", "+", "1", ";"}));
    EXPECT_EQ(tokens(std::string("a\0b 1\0002\n", 8), 5), (Texts{"a", "b", "1", "2", ";"}));
    tt_flag = 0;
    EXPECT_EQ(tokens("x\r\ny\r\n;", 3), (Texts{"x", "y", ";"}));
}

TEST_F(Scan, continuation_mark_drops_the_rest_of_its_line) {
    semicount = 7;
    source("12 ` remark\n34+ab`x\ncd\n");
    for (const char* t : {"1", "2", "3", "4", "+", "ab"}) EXPECT_EQ(next(), t);
    EXPECT_EQ(semicount, 0);
    EXPECT_STREQ(leftover, " ");
    EXPECT_EQ(next(), "cd");
    EXPECT_EQ(next(), ";");
    tt_flag = 0;
    EXPECT_EQ(tokens("ab`\ncd`", 3), (Texts{"ab", "cd", ";"}));
}

TEST_F(Scan, no_continuation_mark_when_it_is_a_blank) {
    continuation = ' ';
    EXPECT_EQ(tokens("x `y\n", 4), (Texts{"x", "`", "y", ";"}));
    EXPECT_EQ(tokens("a b\n", 3), (Texts{"a", "b", ";"}));
}

TEST_F(Scan, end_of_file_gives_semicolons_for_ever) {
    source("ab");
    EXPECT_EQ(next(), "ab");
    EXPECT_EQ(next(), ";");
    EXPECT_TRUE(at_end(in));
    EXPECT_EQ(printed_history(), "ab;");  // the end of the input ends the last typed line
    history_clear();
    tt_flag = 0;
    source("ab");
    EXPECT_EQ(next(), "ab");
    for (int i = 0; i < 5; i++) EXPECT_EQ(next(), ";");
    EXPECT_TRUE(at_end(in));
    EXPECT_EQ(printed_history(), "ab");
}

TEST_F(Scan, two_typed_bytes_are_not_the_end_mark) {
    EXPECT_EQ(tokens("\xC2\xA5", 2), (Texts{"\xC2", "\xA5"}));
}

TEST_F(Scan, literal_characters_are_given_one_by_one) {
    source(std::string("'a b`c`\n\0\r\nd", 12));
    EXPECT_EQ(next(), "'");
    tokentipe t;
    boolean eoln = 1;
    Texts got;
    std::vector<int> lines;
    for (int i = 0; i < 10; i++) {
        dumbscanner(in, &t, &from_stream, &eoln);
        got.push_back(tok_text(t));
        lines.push_back(eoln);
    }
    EXPECT_EQ(got, (Texts{"a", " ", "b", "`", "c", " ", " ", "\r", "d", ";"}));
    EXPECT_EQ(lines, (std::vector<int>{0, 0, 0, 0, 0, 0, 0, 1, 0, 0}));
    EXPECT_EQ(printed_history(), "'a b`c  \nd");
}

TEST_F(Scan, history_separates_names_only) {
    tokens("x := 2 y 3 Foo ( a b ) 4 z_\n", 14);
    EXPECT_EQ(printed_history(), "x:=2y 3Foo(a b)4z_;");
    history_clear();
    EXPECT_EQ(printed_history(), "");
    tokens("abcdefghijklm\n", 3);
    EXPECT_EQ(printed_history(), "abcdefghij klm;");
}

TEST_F(Scan, history_keeps_the_last_sixty_tokens) {
    source("123456789" + std::string(60, '+'));
    for (int i = 0; i < 60; i++) next();
    EXPECT_EQ(printed_history(), "123456789" + std::string(51, '+'));
    next();
    EXPECT_EQ(printed_history(), "23456789" + std::string(52, '+'));
    for (int i = 0; i < 8; i++) next();
    EXPECT_EQ(printed_history(), std::string(60, '+'));
}

TEST_F(Scan, stored_list_is_walked_and_its_end_repeated) {
    nameptr list = nullptr, middle = nullptr, last = nullptr;
    newname(&list), newname(&middle), newname(&last);
    tok_set(list->let, "x"), tok_set(middle->let, "+"), tok_set(last->let, k_end_token);
    middle->let.address = 17;
    list->next = middle, middle->next = last;
    nameptr cursor = list;
    tokentipe t;
    boolean eoln = 1;
    scanner(nullptr, &t, &cursor);
    EXPECT_STREQ(tok_text(t), "+");
    EXPECT_EQ(t.address, 17);
    EXPECT_EQ(currentchar, last);
    dumbscanner(nullptr, &t, &cursor, &eoln);
    EXPECT_TRUE(tok_is(t, k_end_token));
    EXPECT_EQ(eoln, 0);
    EXPECT_EQ(currentchar, nullptr);
    scanner(nullptr, &t, &cursor);
    EXPECT_TRUE(tok_is(t, k_end_token));
    freename(&list);
    EXPECT_EQ(list, nullptr);
    freename(&list);
}

TEST_F(Scan, a_line_of_ten_million_characters) {
    source(std::string(10000000, '7') + " abc\n");
    tokentipe t;
    int64_t n = 0;
    do {
        scanner(in, &t, &from_stream);
        n++;
    } while (tok_char(t) == '7');
    EXPECT_EQ(n, 10000001);
    EXPECT_STREQ(tok_text(t), "abc");
}

TEST(Token, hash_of_names) {
    auto h = [](const char* s, int32_t n) { return hash(reinterpret_cast<const unsigned char*>(s), n); };
    EXPECT_EQ(h("", 151), 0);
    EXPECT_EQ(h("a", 151), 97);
    EXPECT_EQ(h("ab", 151), (97 * 123 + 98) % 151);
    EXPECT_EQ(h("ab", 71), (97 % 71 * 123 + 98) % 71);
    EXPECT_EQ(h("\xFF", 71), 255 % 71);
}

TEST(Token, text_is_cut_at_ten_characters) {
    tokentipe t;
    tok_set(t, "abcdefghijkl");
    EXPECT_STREQ(tok_text(t), "abcdefghij");
    EXPECT_EQ(t.address, -1);
    tok_set(t, "");
    EXPECT_EQ(tok_char(t), 0);
}
