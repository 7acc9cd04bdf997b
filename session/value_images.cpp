#include "session/value_images.h"

#include "session/levels.h"
#include "storage/interrupt.h"
#include "storage/scratch.h"
namespace tolvex {
namespace {
constexpr int32_t k_images_a_block = 8192;
struct ImageBlock {
    ImageBlock* next;
    int32_t count;
    quoly image[k_images_a_block];
};
ImageBlock* first = nullptr;
ImageBlock* last = nullptr;  // that is being filled, or exchanged
int32_t position = 0;        // of the next exchange in it
boolean shape_kept = 0;
int64_t levels_before = 0;
}  // namespace

void begin_images(boolean shape) {
    release_images();
    shape_kept = shape;
    levels_before = levels_opened;
}

bool images_outdated() { return levels_before != levels_opened; }

void keep_image(quolyptr image) {
    if (last == nullptr || last->count == k_images_a_block) {
        auto* block = scratch_array<ImageBlock>(1);
        block->next = nullptr;
        block->count = 0;
        (last == nullptr ? first : last->next) = block;
        last = block;
    }
    last->image[last->count++] = *image;
    *image = nullptr;
}

void rewind_images() {
    last = first;
    position = 0;
}

void exchange_image(quolyptr at) {
    if (position == last->count) {
        last = last->next;
        position = 0;
    }
    quoly before = *at;
    *at = last->image[position];
    last->image[position++] = before;
}

void images_exchanged() { shape_kept = !shape_kept; }

/// Takes a value off the list before anything else happens, so that a panic stop finds the rest.
void release_images() {
    ValueRelease release;
    for (; first != nullptr; first = first->next) {
        while (first->count > 0) {
            quoly gone = first->image[--first->count];
            const boolean shape = lintmode;
            lintmode = shape_kept;
            release(&gone);
            lintmode = shape;
            poll_every<256>(first->count);
        }
    }
    last = nullptr;
}
}  // namespace tolvex
