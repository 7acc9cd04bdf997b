// Random identities: dense to sparse, transposes, sums and products against models; the store under a storm
// of creations and cancellations.
#include "matrix/inverse.h"
#include "matrix/products.h"
#include "numbers/ring_switch.h"
#include "tests/unit/matrix/matrix_support.h"

using namespace tolvex;
using namespace tolvex::test;

namespace {
int32_t below(Rng& rng, int32_t n) { return static_cast<int32_t>(rng() % static_cast<uint32_t>(n)); }

Entries product(const Entries& a, const Entries& b) {
    Entries c;
    for (const auto& [p, x] : a)
        for (const auto& [q, y] : b)
            if (q.first == p.second - 1) c[{p.first, q.second}] += x * y;
    for (auto it = c.begin(); it != c.end();) it = it->second == 0 ? c.erase(it) : std::next(it);
    return c;
}

/// The matrix as a run of elements, column by column.
std::vector<quoly> dense_of(const Entries& e, int32_t rows, int32_t cols) {
    std::vector<quoly> d(static_cast<size_t>(rows) * static_cast<size_t>(cols));
    for (quoly& q : d) q = number_value(0);
    for (const auto& [p, x] : e) quoly_set(x, &d[static_cast<size_t>(p.first + (p.second - 1) * rows)]);
    return d;
}
void drop(std::vector<quoly>& d) {
    for (quoly& q : d) free_quoly(&q);
}
}  // namespace

PROPERTY(dense_to_sparse_and_back, 100) {
    set_up_matrices();
    int32_t rows = 1 + below(rng, round % 10 == 0 ? 5000 : 8), cols = 1 + below(rng, 5);
    Entries e = random_entries(rng, rows, cols, below(rng, 20));
    arrptr a = insertarr(name_of("a"), rows, cols, false);
    for (const auto& [p, x] : e) quoly_set(x, dense_slot(a, p.first + (p.second - 1) * rows));
    fill_sparse(a);
    EXPECT_EQ(entries_of(a->spar, rows), e);
    for (int64_t k = 0; k < a->sizearr; k++) {
        quolyptr at = place_slot(a, k);
        auto it = e.find({row_of_place(a, k), column_of_place(a, k)});
        EXPECT_EQ(at == nullptr ? 0 : word_of(*at), it == e.end() ? 0 : it->second);
    }
#ifdef TOLVEX_CHECKED
    sparse_check(a->spar, rows, cols);
#endif
    free_array(a);
}

PROPERTY(transposes, 100) {
    set_up_matrices();
    int32_t rows = 1 + below(rng, round % 5 == 0 ? 5000 : 10),
            cols = 1 + below(rng, round % 7 == 0 ? 5000 : 10);
    Entries e = random_entries(rng, rows, cols, below(rng, 60));
    sparseptr s = chain_of(e, rows), f = nullptr, copy = nullptr;
    flip_sparse(s, &f, rows, cols);
    EXPECT_EQ(entries_of(f, cols), flipped(e));
    EXPECT_EQ(entries_of(s, rows), e);
    free_sparse_frame(&f, cols);
    copy_sparse(s, &copy, rows, 1);
    trans_sparse(&s, rows, cols);
    EXPECT_EQ(entries_of(s, cols), flipped(e));
    trans_sparse(&s, cols, rows);
    EXPECT_EQ(entries_of(s, rows), e);
    for (const auto& [p, x] : e) EXPECT_EQ(word_of(spar_retrieve(copy, p.first + 1, p.second)), -x);
    put_back_sparse(&copy, s, rows);
    EXPECT_EQ(copy, nullptr);
    for (const auto& [p, x] : e) EXPECT_EQ(word_of(spar_retrieve(s, p.first + 1, p.second)), -x);
    free_sparse(&s, rows, 1);
}

PROPERTY(sums_and_products_of_sparse_matrices, 100) {
    set_up_matrices();
    int32_t n = 1 + below(rng, 9), k = 1 + below(rng, round % 9 == 0 ? 4000 : 9), m = 1 + below(rng, 9);
    Entries a = random_entries(rng, n, k, below(rng, 40)), b = random_entries(rng, k, m, below(rng, 40));
    sparseptr s = chain_of(a, n), t = chain_of(b, k), c = nullptr;
    sparse_init(&c, n);
    sparse_mult(s, t, n, k, c);
    EXPECT_EQ(entries_of(c, n), product(a, b));
    Entries d = random_entries(rng, n, k, below(rng, 40)), sum = a;
    sparseptr u = chain_of(d, n);
    bool minus = rng() % 2 != 0;
    for (const auto& [p, x] : d) {
        sum[p] += minus ? -x : x;
        if (sum[p] == 0) sum.erase(p);
    }
    add_sparses(s, &u, n, minus);
    EXPECT_EQ(entries_of(s, n), sum);
    free_sparse(&s, n, 1);
    free_sparse(&t, k, 1);
    free_sparse(&c, n, 1);
}

/// The product in the ring in force, elements being reduced by the caller's p (0: not at all).
static void check_dense_product(const Entries& a, const Entries& b, int32_t n, int32_t k, int32_t m,
                                int32_t p) {
    auto reduced = [p](int32_t v) { return p == 0 ? v : static_cast<int32_t>((int64_t{v} % p + p) % p); };
    Entries ra, rb;
    for (const auto& [place, v] : a) ra[place] = reduced(v);
    for (const auto& [place, v] : b) rb[place] = reduced(v);
    std::vector<quoly> x = dense_of(ra, n, k), y = dense_of(rb, k, m);
    std::vector<quoly> z(static_cast<size_t>(n) * static_cast<size_t>(m), nullptr);
    matrix_mult(x.data(), y.data(), n, k, m, z.data());
    Entries c = product(a, b);
    for (int32_t r = 0; r < n; r++)
        for (int32_t col = 1; col <= m; col++) {
            auto it = c.find({r, col});
            EXPECT_EQ(word_of(z[static_cast<size_t>(r + (col - 1) * n)]),
                      it == c.end() ? 0 : reduced(it->second));
        }
    drop(x);
    drop(y);
    drop(z);
}

PROPERTY(dense_products_over_integers_and_residues, 60) {
    set_up_matrices();
    int32_t n = 1 + below(rng, 7), k = 1 + below(rng, 7), m = 1 + below(rng, 7);
    Entries a = random_entries(rng, n, k, 30), b = random_entries(rng, k, m, 30);
    check_dense_product(a, b, n, k, m, 0);
    for (int32_t p : {2, 101, 2147483629}) {
        RingState saved = ring_save();
        ring_enter_prime(p);
        check_dense_product(a, b, n, k, m, p);
        ring_restore(saved);
    }
}

PROPERTY(an_inverse_gives_the_identity, 60) {
    set_up_matrices();
    int32_t n = 1 + below(rng, 5);
    auto size = static_cast<size_t>(n) * static_cast<size_t>(n);
    Entries a = random_entries(rng, n, n, n * n);
    std::vector<quoly> x = dense_of(a, n, n), kept = dense_of(a, n, n), y(size, nullptr), z(size, nullptr);
    if (invert_by_elimination(x.data(), y.data(), n)) {
        matrix_mult(kept.data(), y.data(), n, n, n, z.data());
        for (size_t i = 0; i < size; i++) EXPECT_EQ(word_of(z[i]), i % static_cast<size_t>(n + 1) == 0);
    }
    drop(x);
    drop(kept);
    drop(y);
    drop(z);
}

/// The store against a model: what each array holds does not depend on what comes and goes around it.
PROPERTY(the_store_keeps_every_array, 30) {
    set_up_matrices();
    struct Model {
        arrptr a;
        int32_t first;
        bool sparse;
    };
    std::vector<Model> live;
    int32_t next = 1;
    for (int32_t step = 0; step < 60; step++) {
        size_t pick = live.empty() ? 0 : rng() % live.size();
        switch (live.empty() ? 0 : rng() % 4) {
        case 0:
        case 1: {
            const char name[] = {static_cast<char>('a' + below(rng, 9)), 0};
            arrptr a = insertarr(name_of(name), 1 + below(rng, 900), 1 + below(rng, 3), false);
            for (int32_t k = 0; k < a->sizearr; k++) quoly_set(next + k, dense_slot(a, k));
            live.push_back({a, next, false});
            next += static_cast<int32_t>(a->sizearr);
            break;
        }
        case 2:
            free_array(live[pick].a);
            live.erase(live.begin() + static_cast<int64_t>(pick));
            break;
        default:
            if (!live[pick].sparse) fill_sparse(live[pick].a);
            live[pick].sparse = true;
        }
        int64_t dense = 0;
        for (const Model& m : live) {
            if (!m.sparse) dense += m.a->sizearr;
            for (int64_t k : {int64_t{0}, m.a->sizearr / 2, m.a->sizearr - 1})
                ASSERT_EQ(word_of(*place_slot(m.a, k)), m.first + k);
        }
        ASSERT_EQ(endarr, dense - 1);
    }
    for (const Model& m : live) free_array(m.a);
    ASSERT_EQ(endarr, -1);
}
