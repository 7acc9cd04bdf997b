#include "language/other_rings.h"

#include "quoly/quoly_audit.h"
#include "storage/failure.h"
namespace tolvex {
static away_value* away_garb = nullptr;

/// Words or chains, as the values of that ring have them.
static void take_shape_of(int32_t ring) { lintmode = ring > 0; }

void put_away(quolyptr at, int32_t ring) {
    away_value* entry = pool_pop<&away_value::next>(away_garb, nullptr);
    *entry = {away_list, at, *at, ring};
    away_list = entry;
    *at = nullptr;
}

static away_value** link_to(const quoly* at) {
    away_value** link = &away_list;
    while (*link != nullptr && (*link)->at != at) link = &(*link)->next;
    return link;
}

static void unlink(away_value** link) {
    away_value* entry = *link;
    *link = entry->next;
    pool_push<&away_value::next>(away_garb, entry);
}

bool find_away(const quoly* at) { return *link_to(at) != nullptr; }

void drop_away(quolyptr at) {
    away_value** link = link_to(at);
    if (*link == nullptr) return;
    boolean shape = lintmode;
    take_shape_of((*link)->ring);
    free_quoly(&(*link)->value);
    lintmode = shape;
    unlink(link);
}

bool refuse_other_ring(const quoly* at, tokentipe& name) {
    if (!stands_in_other_ring(at)) return false;
    error(Err::ring_mismatch, tok_text(name));
    return true;
}

void bring_back(away_value** link) {
    *(*link)->at = (*link)->value;
    unlink(link);
}

#ifdef TOLVEX_CHECKED
void audit_reach_away() {
    boolean shape = lintmode;
    for (const away_value* entry = away_list; entry != nullptr; entry = entry->next) {
        take_shape_of(entry->ring);
        audit_reach_quoly(entry->value);
    }
    lintmode = shape;
}
#endif
}  // namespace tolvex
