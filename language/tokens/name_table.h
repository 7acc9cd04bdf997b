#pragma once
/// language/tokens/name_table.h: the chained hash tables of everything that has a name.
///
///   chains: hash 0: [ | | | ]  hash 1: [ | | | ] ...        `spread` of them for each value of the hash
///                      └─► newest ─► ... ─► oldest ─► nil
///
/// Purpose    records that own their link, of which the newest of a name hides the older ones. Few names
///            have one chain a bucket; a session of very many names spreads its buckets, so that a lookup
///            stays short.
/// Invariant  the records of one name stand in one chain, the newest first; spread is a power of two.
///            Removal is done by the owner of the link.
/// Ownership  the table owns its chains, not the records.
#include "language/tokens/token.h"
#include "storage/memory.h"
#include "storage/scratch.h"
namespace tolvex {
/// A number that tells the names of one bucket apart.
inline uint32_t name_piece(const tokentipe& name) {
    uint64_t front;
    uint32_t back;
    memcpy(&front, name.name, sizeof front);
    memcpy(&back, name.name + k_namelength + 1 - sizeof back, sizeof back);
    return static_cast<uint32_t>(((front ^ back) * 0x9E3779B97F4A7C15u) >> 40);
}

template <class R, tokentipe R::*name_of, int32_t width> struct NameTable {
    using Link = R*;
    /// The chain of a name whose address is its hash.
    Link* chain_of(const tokentipe& name) {
        Link* bucket = chains + name.address * spread;
        return __builtin_expect(spread == 1, 1) ? bucket : bucket + (name_piece(name) & (spread - 1));
    }
    /// The link of the newest record of that name; it holds nil if there is none.
    Link* link_of(const tokentipe& name) {
        Link* link = chain_of(name);
        while (*link != nullptr && !same_name((*link)->*name_of, name)) link = &(*link)->next;
        return link;
    }
    /// r becomes the newest record. Links taken before are void.
    void push(R* r) {
        Link* chain = chain_of(r->*name_of);
        r->next = *chain;
        *chain = r;
        if (++entries > int64_t{spread == 1 ? k_full : k_full_later} * width * spread) spread_out();
    }
    /// The record at the link goes.
    void take_off(Link* link) {
        *link = (*link)->next;
        entries--;
    }
    /// All chains, in the order of the hash.
    Link* begin() { return chains; }
    Link* end() { return chains + width * spread; }
    /// The chains of one value of the hash.
    Link* bucket(int32_t i) { return chains + i * spread; }
    /// No record is left in it.
    void clear() {
        for (Link& chain : *this) chain = nullptr;
        entries = 0;
    }

    // Records a chain, on the average, at which the table spreads: at first the chains are those that
    // listings show.
    static constexpr int32_t k_full = 40, k_full_later = 2;
    static constexpr int32_t k_step = 8;
    static constexpr int32_t k_widest = 1 << 16;

    [[gnu::noinline]] void spread_out() {
        if (spread >= k_widest) return;
        ScratchMark mark = scratch_mark();
        int32_t old_chains = width * spread;
        Link* old = scratch_array<Link>(old_chains);
        memcpy(static_cast<void*>(old), chains, static_cast<size_t>(old_chains) * sizeof(Link));
        spread *= k_step;
        auto room = static_cast<size_t>(width * spread) * sizeof(Link);
        chains = static_cast<Link*>(checked_realloc(chains == first ? nullptr : chains, room));
        memset(static_cast<void*>(chains), 0, room);
        for (int32_t i = 0; i < old_chains; i++) move_chain(old[i]);
        scratch_release(mark);
    }
    /// The records of an old chain to the ends of the new ones: their order stays.
    void move_chain(R* r) {
        while (r != nullptr) {
            R* rest = r->next;
            Link* to = chain_of(r->*name_of);
            while (*to != nullptr) to = &(*to)->next;
            r->next = nullptr;
            *to = r;
            r = rest;
        }
    }

    Link first[width] = {};  // the chains of a table that has not been spread
    Link* chains = first;
    int32_t spread = 1;
    int64_t entries = 0;
};
}  // namespace tolvex
