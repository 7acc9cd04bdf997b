#pragma once
/// storage/scratch.h: a stack of scratch memory for arrays that live inside one operation.
///
/// Purpose    limb arrays, residue arrays, packed terms: taken in any size, given back all at once. An
///            operation takes a mark, takes arrays, and releases to its mark on every way out.
/// Invariant  release in the reverse order of the marks. Contents are undefined. Addresses are 64-byte
///            aligned and stay where they are until released.
/// Ownership  after an error jump the session resets the stack to the mark of the level that goes on.
/// Raises     as checked_malloc. Safe points (poll_interrupt) where blocks beyond k_kept go back to the
///            system.
#include <cstddef>
#include <cstdint>
namespace tolvex {
struct ScratchMark {
    void* block;  // the block in use
    size_t used;  // bytes of it in use
};
ScratchMark scratch_mark();              ///< where the stack stands
void scratch_release(ScratchMark mark);  ///< gives back all that was taken since
void* scratch_bytes(size_t bytes);       ///< room for so many bytes
/// Long arrays are cleared and copied with safe points in between: the first touch of a gigabyte takes a
/// second.
void scratch_fill(void* at, unsigned char byte, size_t bytes);
inline void scratch_clear(void* at, size_t bytes) { scratch_fill(at, 0, bytes); }
void scratch_copy(void* to, const void* from, size_t bytes);
/// An array of n elements of T.
template <class T> inline T* scratch_array(int64_t n) {
    return static_cast<T*>(scratch_bytes(static_cast<size_t>(n > 0 ? n : 1) * sizeof(T)));
}
}  // namespace tolvex
