// Random polynomials, displayed and read back: the same value, in both forms, on terminals and in files, with
// short lines, in every ring, with and without negative exponents.
#include "language/tokens/scanner.h"
#include "numbers/display_modes.h"
#include "poly/poly_display.h"
#include "poly/poly_read.h"
#include "poly/poly_test.h"
#include "tests/unit/poly/named_variables.h"

#include <cstdlib>
using namespace tolvex;
using namespace tolvex::test;

PROPERTY(displayed_text_reads_back, 800) {
    use_ring(all_rings[round % all_ring_count]);
    name_variables(1 + round % 3);
    monomial_list = round / 3 % 2;
    laurent = round / 6 % 2;
    alt_form_display = round / 12 % 3 != 0;
    do_line_sup = 0;
    bool terminal = rng() % 2 == 0;
    dispcutoff = static_cast<int16_t>(rng() % 2 == 0 ? 76 : 5 + rng() % 30);
    poly p =
        random_poly(rng, {number_polys, 12, 4, round % 2 ? Coefs::small : Coefs::corners, laurent ? -3 : 0});

    char* data = nullptr;
    size_t size = 0;
    FILE* f = open_memstream(&data, &size);
    int32_t length = 0, lines = 0;
    poly_display(f, terminal, p, &length, polynames, 0, 1, &lines);
    fputs(terminal ? "\n" : ";\n", f);
    fclose(f);

    tt_flag = terminal;
    minus_warned = 1;
    leftover[0] = 0;
    nameptr none = nullptr;
    int32_t depth = 0;
    poly q = nullptr;
    f = fmemopen(data, size, "r");
    scanner(f, &token, &none);
    poly_readin(f, &q, &none, &depth);
    fclose(f);
    EXPECT_TRUE(poly_equal(p, q)) << data << " was read as " << text_of(q);
    EXPECT_TRUE(poly_check(q, number_polys));
    EXPECT_STREQ(tok_text(token), ";") << data;
    free(data);
    free_poly(&p);
    free_poly(&q);

    tt_flag = 1;
    minus_warned = laurent = monomial_list = 0;
    alt_form_display = do_line_sup = 1;
    dispcutoff = 76;
    use_integers();
}
