#include "matrix/assignment.h"

#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
namespace tolvex {
namespace {
constexpr int64_t k_far = INT64_MAX / 4;

/// Costs are negated degrees; rows and columns count from 1, column 0 stands for "none".
struct Assignment {
    const int64_t* degree;
    int32_t n;
    int64_t *row_price, *column_price, *distance;
    int32_t *row_of, *before;  // by column
    bool* done;
};
}  // namespace

static int64_t reduced_cost(const Assignment& s, int32_t row, int32_t column) {
    int64_t degree = s.degree[int64_t{row - 1} * s.n + column - 1];
    return degree == k_no_degree ? k_far : -degree - s.row_price[row] - s.column_price[column];
}

/// The columns that `row` reaches may have become nearer; returns the nearest one that is not done, 0: none
/// is reached.
static int32_t look_from(Assignment& s, int32_t row, int32_t column) {
    int32_t nearest = 0;
    for (int32_t c = 1; c <= s.n; c++) {
        if (s.done[c]) continue;
        int64_t cost = reduced_cost(s, row, c);
        if (cost < s.distance[c]) {
            s.distance[c] = cost;
            s.before[c] = column;
        }
        if (s.distance[c] < k_far && (nearest == 0 || s.distance[c] < s.distance[nearest])) nearest = c;
    }
    return nearest;
}

static void change_prices(Assignment& s, int64_t by) {
    for (int32_t c = 0; c <= s.n; c++) {
        if (s.done[c]) {
            s.row_price[s.row_of[c]] += by;
            s.column_price[c] -= by;
        } else if (s.distance[c] < k_far) {
            s.distance[c] -= by;
        }
    }
}

/// `row` gets a column, others may change theirs. False: there is none.
static bool assign_row(Assignment& s, int32_t row) {
    std::fill_n(s.distance, s.n + 1, k_far);
    std::fill_n(s.done, s.n + 1, false);
    s.row_of[0] = row;
    int32_t column = 0;
    do {
        s.done[column] = true;
        int32_t next = look_from(s, s.row_of[column], column);
        if (next == 0) return false;
        change_prices(s, s.distance[next]);
        column = next;
        poll_interrupt();
    } while (s.row_of[column] != 0);
    for (; column != 0; column = s.before[column]) s.row_of[column] = s.row_of[s.before[column]];
    return true;
}

int64_t greatest_assignment(const int64_t* degree, int32_t n) {
    ScratchMark mark = scratch_mark();
    int64_t room = int64_t{n} + 1;
    Assignment s = {degree,
                    n,
                    scratch_array<int64_t>(room),
                    scratch_array<int64_t>(room),
                    scratch_array<int64_t>(room),
                    scratch_array<int32_t>(room),
                    scratch_array<int32_t>(room),
                    scratch_array<bool>(room)};
    std::fill_n(s.row_price, room, 0);
    std::fill_n(s.column_price, room, 0);
    std::fill_n(s.row_of, room, 0);
    bool good = true;
    for (int32_t row = 1; good && row <= n; row++) good = assign_row(s, row);
    int64_t sum = 0;
    for (int32_t c = 1; good && c <= n; c++) sum += degree[int64_t{s.row_of[c] - 1} * n + c - 1];
    scratch_release(mark);
    return good ? sum : k_no_degree;
}
}  // namespace tolvex
