// Polynomials over two elements: against products and remainders bit by bit, with the processor's instruction
// and without.
#include "poly/bit_poly.h"
#include "storage/scratch.h"
#include "tests/support/random_poly.h"

#include <vector>
using namespace tolvex;
using namespace tolvex::test;
using Bits = std::vector<uint64_t>;

static Bits random_bits(Rng& rng, int32_t degree) {
    Bits a(static_cast<size_t>(bit_words(degree)));
    for (uint64_t& w : a) w = rng();
    for (int32_t e = degree + 1; e < 64 * static_cast<int32_t>(a.size()); e++)
        a[static_cast<size_t>(e / 64)] &= ~(uint64_t{1} << (e % 64));
    a[static_cast<size_t>(degree / 64)] |= uint64_t{1} << (degree % 64);
    return a;
}
static void flip(Bits& a, int32_t e) { a[static_cast<size_t>(e / 64)] ^= uint64_t{1} << (e % 64); }
static Bits product_of(const Bits& a, const Bits& b) {
    Bits c(a.size() + b.size());
    for (int32_t i = 0; i < 64 * static_cast<int32_t>(a.size()); i++)
        for (int32_t j = 0; j < 64 * static_cast<int32_t>(b.size()); j++)
            if (bit_at(a.data(), i) && bit_at(b.data(), j)) flip(c, i + j);
    return c;
}
static void reduce(Bits& a, const Bits& f, int32_t n) {
    for (int32_t e = 64 * static_cast<int32_t>(a.size()) - 1; e >= n; e--)
        if (bit_at(a.data(), e))
            for (int32_t i = 0; i <= n; i++)
                if (bit_at(f.data(), i)) flip(a, e - n + i);
}

namespace {
/// Every second round without the instruction.
struct Instruction {
    bool before = bit_products_by_instruction;
    explicit Instruction(bool wanted) { bit_products_by_instruction = before && wanted; }
    ~Instruction() { bit_products_by_instruction = before; }
    Instruction(const Instruction&) = delete;
    Instruction& operator=(const Instruction&) = delete;
};
}  // namespace

PROPERTY(bit_products, 60) {
    Instruction use(round % 2 == 0);
    const int32_t most = round % 10 == 0 ? 3500 : 300;
    const Bits a = random_bits(rng, random_int(rng, 0, most)), b = random_bits(rng, random_int(rng, 0, 300));
    Bits c(a.size() + b.size()), square(2 * a.size());
    bit_product(a.data(), static_cast<int64_t>(a.size()), b.data(), static_cast<int64_t>(b.size()), c.data());
    EXPECT_EQ(c, product_of(a, b));
    bit_square(a.data(), static_cast<int64_t>(a.size()), square.data());
    if (most == 300) {
        EXPECT_EQ(square, product_of(a, a));
    }
}

/// Operands that Karatsuba's method takes: products of both kinds agree, and distribute.
PROPERTY(long_bit_products, 20) {
    const int32_t n = random_int(rng, 1000, 9000);
    const Bits a = random_bits(rng, n), b = random_bits(rng, n),
               d = random_bits(rng, random_int(rng, 900, 5000));
    auto times = [](const Bits& x, const Bits& y, bool instruction) {
        Instruction use(instruction);
        Bits c(x.size() + y.size());
        bit_product(x.data(), static_cast<int64_t>(x.size()), y.data(), static_cast<int64_t>(y.size()),
                    c.data());
        return c;
    };
    EXPECT_EQ(times(a, d, true), times(d, a, false));
    Bits sum = a, products = times(a, d, true);
    for (size_t i = 0; i < sum.size(); i++) sum[i] ^= b[i];
    const Bits other = times(b, d, false);
    for (size_t i = 0; i < products.size(); i++) products[i] ^= other[i];
    EXPECT_EQ(times(sum, d, true), products);
}

PROPERTY(bit_remainders, 100) {
    Instruction use(round % 2 == 0);
    const int32_t n = random_int(rng, 1, 300);
    const Bits f = random_bits(rng, n), a = random_bits(rng, random_int(rng, 0, n - 1)),
               b = random_bits(rng, random_int(rng, 0, n - 1));
    ScratchMark mark = scratch_mark();
    BitModulus m;
    open_bit_modulus(&m, f.data(), n);
    Bits x = a, y = b, c(static_cast<size_t>(m.words));
    x.resize(c.size());
    y.resize(c.size());
    Bits expected = product_of(x, y), square = product_of(x, x);
    reduce(expected, f, n);
    reduce(square, f, n);
    expected.resize(c.size());
    square.resize(c.size());
    bit_product_modulo(m, x.data(), y.data(), c.data());
    EXPECT_EQ(c, expected);
    bit_square_modulo(m, x.data(), x.data());
    EXPECT_EQ(x, square);
    scratch_release(mark);
}

PROPERTY(bit_quotients_and_gcds, 60) {
    const int32_t dq = random_int(rng, 0, 200), db = random_int(rng, 0, 200);
    const Bits q = random_bits(rng, dq), b = random_bits(rng, db);
    Bits a = product_of(q, b), rest(static_cast<size_t>(bit_words(dq)));
    if (db > 0) flip(a, 0);
    Bits dividend = a;
    const int32_t degree = bit_divide(dividend.data(), dq + db, b.data(), db, rest.data());
    EXPECT_EQ(rest, q);
    EXPECT_EQ(degree, db > 0 ? 0 : -1);
    if (db > 0) flip(a, 0);
    Bits u = product_of(a, random_bits(rng, 50)), v = a;
    uint64_t* g = nullptr;
    const int32_t dg =
        bit_gcd(u.data(), bit_degree(u.data(), static_cast<int64_t>(u.size())), v.data(), dq + db, &g);
    EXPECT_EQ(dg, dq + db);
    for (int32_t i = 0; i < bit_words(dg); i++) EXPECT_EQ(g[i], a[static_cast<size_t>(i)]);
}
