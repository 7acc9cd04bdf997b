// Random values, displayed and evaluated again by the rules of expressions: the same value, in every form of
// the display, on terminals and in files, in every ring.
#include "language/tokens/scanner.h"
#include "numbers/display_modes.h"
#include "poly/poly_modes.h"
#include "tests/unit/quoly/quoly_support.h"
using namespace tolvex;
using namespace tolvex::test;

PROPERTY(displayed_values_read_back, 1200) {
    static const int32_t rings[] = {0, 0, 2147483646, 2, 7, 10007, 2147483629, 256, 65536, 6};
    int32_t vars = round / 10 % 4;
    Setting setting(rings[round % 10], vars, round / 40 % 2 != 0);
    quoly q = random_value(rng, vars, 6);
    uglyprint = round % 3 == 0;
    monomial_list = rng() % 2 == 0;
    alt_form_display = rng() % 3 != 0;
    do_line_sup = 0;
    dispcutoff = static_cast<int16_t>(rng() % 2 == 0 ? 76 : rng() % 30);
    bool terminal = rng() % 2 == 0, open = false;
    std::string text = text_of(q, terminal, &open);
    EXPECT_EQ(text[0], ' ');
    if (dispcutoff == 76) {
        EXPECT_NE(text[1], ' ') << text;
    }
    EXPECT_EQ(open, text.back() != '\n') << text;
    quoly again = value(text);
    EXPECT_TRUE(quoly_equal(q, again)) << text;
    EXPECT_TRUE(canonical(again)) << text;
    free_quoly(&q);
    free_quoly(&again);
}
