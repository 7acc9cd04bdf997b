#include "matrix/int_adjoint.h"

#include "matrix/word_adjoint.h"
#include "poly/packed_crt.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"

#include <algorithm>
#include <bit>
namespace tolvex {
/// Over lines of entries: the bits of the product of their lengths, lines shorter than 1 left out.
static int64_t bits_over_lines(const IntEntry* a, int64_t n, int64_t line_step, int64_t step) {
    int64_t bits = 0, counts = 0;
    for (int64_t line = 0; line < n; line++) {
        int64_t most = 0;
        uint64_t count = 0;
        for (int64_t k = 0; k < n; k++) {
            int64_t here = entry_bits(a[line * line_step + k * step]);
            most = std::max(most, here);
            count += here > 0;
        }
        bits += most;
        counts += std::bit_width(count);
    }
    return bits + counts / 2 + 2;
}

void int_adjoint(const IntEntry* a, int32_t n, void (*take)(void* context, int64_t k, imptr value),
                 void* context) {
    ScratchMark mark = scratch_mark();
    int64_t count = int64_t{n} * n, bits = std::min(bits_over_lines(a, n, n, 1), bits_over_lines(a, n, 1, n));
    constexpr int64_t k_bits_a_prime = 22;
    CrtTerms t = crt_open(static_cast<int32_t>(bits / k_bits_a_prime) + 2);
    PackTerms image = {count, scratch_array<int64_t>(count), {scratch_array<uint32_t>(count)}};
    for (int64_t k = 0; k < count; k++) image.index[k] = count - k;
    for (uint32_t p = k_first_image_prime; crt_product_bits(t) <= bits; p = image_prime_below(p)) {
        WordField f = word_field_prime(p);
        for (int64_t k = 0; k < count; k++) image.residue[k] = entry_residue(f, a[k]);
        word_adjoint(f, image.residue, n);
        bool grown;
        crt_add(&t, image, f, &grown);
        poll_interrupt();
    }
    for (int64_t k = 0; k < count; k++) {
        number value = {};
        leaf_of_crt(&t, k, &value);
        take(context, k, &value);
    }
    scratch_release(mark);
}
}  // namespace tolvex
