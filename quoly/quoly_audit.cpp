#include "quoly/quoly_audit.h"

#ifdef TOLVEX_CHECKED
#include "gcd/gcd_stash.h"
namespace tolvex {
static void reach_gcd_stash() {
    walk_gcd_stash([] { audit_reach<GcdEntry>(); }, audit_reach_poly);
}

static void reach_waiting() {
    for (const polynode* p = polywait; p != nullptr; p = p->next) {
        audit_reach<polynode>();
        audit_reach_poly(p->pcoef);
    }
    for (const quolynode* q = quolywait; q != nullptr; q = q->next) audit_reach_quoly(q);
}

void audit_value_pools() {
    audit_pool<numnode>("numnode");
    audit_pool<number>("number");
    audit_pool<polynode>("polynode");
    audit_pool<quolynode>("quolynode");
    audit_pool<GcdEntry>("gcd entry");
    audit_roots(reach_gcd_stash);
    audit_roots(reach_waiting);
}

void audit_reach_number(const number* x) {
    audit_reach<number>();
    if (x->size > 0) audit_reach<numnode>(x->size);
}

void audit_reach_poly(const polynode* p) {
    for (; p != nullptr; p = p->next) {
        audit_reach<polynode>();
        if (p->numb) {
            audit_reach_number(p->ncoef);
        } else {
            audit_reach_poly(p->pcoef);
        }
    }
}

void audit_reach_quoly(const quolynode* q) {
    if (q == nullptr) return;
    audit_reach<quolynode>();
    if (q->numb) {
        audit_reach_number(q->ncoef);
    } else {
        audit_reach_poly(q->numer);
        audit_reach_poly(q->denom);
    }
}
}  // namespace tolvex
#endif
