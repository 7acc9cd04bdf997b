#include "matrix/work.h"

#include "storage/failure.h"
#include "storage/memory.h"
namespace tolvex {
bool new_worknode(int32_t* p, const char* symbol) {
    if (first_available > k_work_arrays) {
        error(Err::no_work_array, symbol);
        return false;
    }
    workptr& work = workhead[first_available - 1];
    if (work == nullptr)
        work = static_cast<workptr>(checked_malloc(static_cast<size_t>(k_greatest_array) * sizeof(quoly)));
    *p = first_available++;
    return true;
}

void free_work() {
    CHECK(first_available > 1);
    first_available--;
}
}  // namespace tolvex
