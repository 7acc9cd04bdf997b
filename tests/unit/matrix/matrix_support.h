#pragma once
// What the tests of matrices stand on: small whole numbers as elements, and models in plain containers.
#include "matrix/array.h"
#include "matrix/matrix_modes.h"
#include "quoly/quoly_basic.h"
#include "tests/support/returned_errors.h"

#include <map>
#include <utility>
#include <vector>
namespace tolvex::test {
using Entries = std::map<std::pair<int32_t, int32_t>, int32_t>;  // (row from 0, column from 1)

inline void set_up_matrices() {
    set_up_once();
    init_quoly_constants();
    static bool done = false;
    if (!done) init_arrays();
    done = true;
}
inline quoly number_value(int32_t n) {
    quoly q = nullptr;
    quoly_set(n, &q);
    return q;
}
inline quoly value_of_poly(poly p) {
    quoly q = nullptr;
    poly_to_quoly(&p, &q);
    return q;
}
using Values = std::vector<quoly>;  // the elements of a matrix, by columns
/// f(k) for k = 0..n*n-1.
template <class F> Values elements(int32_t n, F f) {
    Values a;
    for (int32_t k = 0; k < n * n; k++) a.push_back(f(k));
    return a;
}
inline Values copy_of(const Values& a) {
    Values b(a.size(), nullptr);
    for (size_t k = 0; k < a.size(); k++) quoly_assign(a[k], &b[k]);
    return b;
}
inline void free_values(Values& a) {
    for (quoly& q : a) free_quoly(&q);
}
inline int32_t word_of(const quolynode* q) { return big_quoly_convert_to_int(q); }
inline tokentipe name_of(const char* text) {
    tokentipe name;
    tok_set(name, text);
    return name;
}

inline Entries random_entries(Rng& rng, int32_t rows, int32_t cols, int32_t count) {
    Entries e;
    for (int32_t i = 0; i < count; i++) {
        auto value = static_cast<int32_t>(rng() % 19) - 9;
        if (value != 0)
            e[{static_cast<int32_t>(rng() % static_cast<uint32_t>(rows)),
               static_cast<int32_t>(rng() % static_cast<uint32_t>(cols)) + 1}] = value;
    }
    return e;
}
inline sparseptr chain_of(const Entries& e, int32_t rows) {
    sparseptr s = nullptr;
    sparse_init(&s, rows);
    for (const auto& [place, value] : e) sparse_insert(s, place.first, place.second, number_value(value));
    return s;
}
inline Entries entries_of(sparseptr s, int32_t rows) {
    Entries e;
    SparseWalk w = walk_sparse(s, rows);
    while (colm_ptrptr t = next_row(w))
        for (const colnode* p = *t; p != nullptr; p = p->next) e[{w.row, p->coord}] = word_of(p->val);
    return e;
}
inline Entries flipped(const Entries& e) {
    Entries f;
    for (const auto& [place, value] : e) f[{place.second - 1, place.first + 1}] = value;
    return f;
}
}  // namespace tolvex::test
