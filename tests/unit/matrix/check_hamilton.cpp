// Paths through all vertices: the search and each of the proofs against the trial of all orders.
#include "matrix/hamilton.h"
#include "matrix/hamilton_proofs.h"
#include "storage/scratch.h"
#include "tests/unit/matrix/matrix_support.h"

#include <algorithm>
#include <memory>
#include <numeric>
using namespace tolvex;
using namespace tolvex::test;

namespace {
/// Row by row, as hamilton_path_driver takes it; no vertex leads to itself.
struct Graph {
    int32_t n;
    std::unique_ptr<bool[]> edge;
    bool& at(int32_t i, int32_t j) const { return edge[static_cast<size_t>(i * n + j)]; }
};

Graph graph_without_edges(int32_t n) { return {n, std::make_unique<bool[]>(static_cast<size_t>(n * n))}; }

/// An edge in every place, but for a few of `of` places.
Graph random_graph(Rng& rng, int32_t n, uint32_t of) {
    Graph g = graph_without_edges(n);
    for (int32_t i = 0; i < n; i++)
        for (int32_t j = 0; j < n; j++) g.at(i, j) = i != j && rng() % of == 0;
    return g;
}

bool path_by_all_orders(const Graph& g) {
    std::vector<int32_t> order(static_cast<size_t>(g.n));
    std::iota(order.begin(), order.end(), 0);
    do {
        bool path = true;
        for (size_t k = 1; path && k < order.size(); k++) path = g.at(order[k - 1], order[k]);
        if (path) return true;
    } while (std::next_permutation(order.begin(), order.end()));
    return false;
}
}  // namespace

PROPERTY(paths_against_all_orders, 300) {
    set_up_matrices();
    Graph g = random_graph(rng, static_cast<int32_t>(rng() % 7) + 1, static_cast<uint32_t>(rng() % 5) + 1);
    bool path = path_by_all_orders(g);
    EXPECT_EQ(hamilton_path_driver(g.edge.get(), g.n, INT32_MAX), path);
    EXPECT_EQ(hamilton_path_driver(g.edge.get(), g.n, 1), path);
    EXPECT_EQ(path_by_subsets(g.edge.get(), g.n), path);
    if (path) {
        EXPECT_TRUE(has_path_matching(g.edge.get(), g.n));
        EXPECT_TRUE(components_in_line(g.edge.get(), g.n));
    }
}

/// No search would end: 99 vertices with all edges, and one with none, or two such halves.
TEST(Hamilton, VerticesApartAreSeenAtOnce) {
    set_up_matrices();
    for (int32_t part : {1, 50}) {
        Graph g = graph_without_edges(100);
        for (int32_t i = 0; i < 100; i++)
            for (int32_t j = 0; j < 100; j++) g.at(i, j) = i != j && (i < part) == (j < part);
        EXPECT_FALSE(components_in_line(g.edge.get(), g.n));
        EXPECT_FALSE(hamilton_path_driver(g.edge.get(), g.n, INT32_MAX));
        EXPECT_FALSE(hamilton_path_driver(g.edge.get(), g.n, 1));
        g.at(part, 0) = true;
        EXPECT_TRUE(components_in_line(g.edge.get(), g.n));
    }
}
