#include "poly/poly_add.h"

#include "poly/leaf_number.h"
#include "poly/poly_basic.h"
#include "storage/interrupt.h"
namespace tolvex {
namespace {
enum class Sign { plus, minus };
/// What becomes of an operand: kept operands are only read, taken ones become nodes of the result.
enum class Use { keep, take };

/// A chain that is a number 0 adds no term; any other polynomial is walked as it stands, since a leaf has the
/// exponent 0 of the term that it is.
template <Use use> poly terms_of(poly p) {
    if (!is_number(p) || !iszero(p->ncoef)) return p;
    if constexpr (use == Use::take) free_leaf(p);
    return nullptr;
}

/// The rest of a chain as the tail of the result.
template <Sign sign, Use use> poly rest_of(poly p) {
    if (p == nullptr) return nullptr;
    if constexpr (use == Use::take) {
        if constexpr (sign == Sign::minus) poly_inplace(p);
        return p;
    }
    poly copy = nullptr;
    if constexpr (sign == Sign::minus)
        poly_makeneg(p, &copy);
    else
        poly_assign(p, &copy);
    return copy;
}

/// One node of a chain as a node of the result, next nil; *p goes on to the following one.
template <Sign sign, Use use> poly node_of(poly* p) {
    poly node = *p;
    *p = node->next;
    if constexpr (use == Use::take) {
        node->next = nullptr;
        if constexpr (sign == Sign::minus) poly_inplace(node);
        return node;
    }
    poly copy = nullptr;
    node_assign(node, &copy);
    if constexpr (sign == Sign::minus) poly_inplace(copy);
    return copy;
}

/// The sum or difference of two leaves, as one leaf.
template <Sign sign, Use use_n, Use use_m> poly leaf_merge(poly n, poly m) {
    poly result;
    if constexpr (use_n == Use::take) {
        if constexpr (sign == Sign::plus)
            leaf_add(n->ncoef, m->ncoef);
        else
            leaf_sub(n->ncoef, m->ncoef);
        result = n;
    } else {
        result =
            leaf_of(sign == Sign::plus ? leaf_sum(n->ncoef, m->ncoef) : leaf_difference(n->ncoef, m->ncoef));
    }
    if constexpr (use_m == Use::take) free_leaf(m);
    return result;
}

template <Sign sign, Use use_n, Use use_m> poly merge(poly n, poly m);

/// The coefficient of a node as a polynomial of its own. A taken node is given back, unless it is the leaf
/// itself; of a kept leaf *shell is the copy without next.
template <Use use> poly coefficient_of(poly* p, poly shell) {
    poly node = *p;
    *p = node->next;
    if (node->numb) {
        if constexpr (use == Use::take) {
            node->next = nullptr;
            return node;
        }
        *shell = leaf_alone(node);
        return shell;
    }
    poly c = node->pcoef;
    if constexpr (use == Use::take) free_node(node);
    return c;
}

/// The two first nodes have one exponent: the node of their sum, or nil when it vanishes.
template <Sign sign, Use use_n, Use use_m> poly merge_nodes(poly* n, poly* m) {
    int32_t exp = (*n)->exp;
    polynode shell_n, shell_m;
    poly a = coefficient_of<use_n>(n, &shell_n), b = coefficient_of<use_m>(m, &shell_m);
    poly c =
        is_number(a) && is_number(b) ? leaf_merge<sign, use_n, use_m>(a, b) : merge<sign, use_n, use_m>(a, b);
    if (!is_number(c) || !iszero(c->ncoef)) return chain_node(exp, c);
    free_leaf(c);
    return nullptr;
}

/// n + m or n - m, a merge of two chains sorted by falling exponent.
template <Sign sign, Use use_n, Use use_m> poly merge(poly n, poly m) {
    if (is_number(n) && is_number(m)) return leaf_merge<sign, use_n, use_m>(n, m);
    n = terms_of<use_n>(n);
    m = terms_of<use_m>(m);
    poly head = nullptr;
    polyptrr at = &head;
    while (n != nullptr && m != nullptr) {
        if constexpr (use_n == Use::keep && use_m == Use::keep) poll_interrupt();
        if (n->exp > m->exp)
            *at = node_of<Sign::plus, use_n>(&n);
        else if (n->exp < m->exp)
            *at = node_of<sign, use_m>(&m);
        else
            *at = merge_nodes<sign, use_n, use_m>(&n, &m);
        if (*at != nullptr) at = &(*at)->next;
    }
    *at = n != nullptr ? rest_of<Sign::plus, use_n>(n) : rest_of<sign, use_m>(m);
    return head != nullptr ? head : zero_leaf();
}

/// *p := the merge; the old value of *p goes back last, unless it was an operand that has been used up.
template <Sign sign, Use use_n, Use use_m> void operate(poly n, poly m, polyptrr p) {
    poly old = *p;
    if ((use_n == Use::take && old == n) || (use_m == Use::take && old == m)) old = nullptr;
    *p = merge<sign, use_n, use_m>(n, m);
    free_poly(&old);
}

/// Both operands of one level over residues, both taken: no mode is asked in the loop and nothing recurs.
template <Sign sign> poly simplest_merge(poly n, poly m) {
    const int32_t modul = modulus;
    auto combine = [modul](int32_t x, int32_t y) {
        return sign == Sign::plus ? mod_add(x, y, modul) : mod_sub(x, y, modul);
    };
    auto residue = [](poly t) -> int32_t& { return (t->numb ? t : t->pcoef)->ncoef->lint; };
    auto drop = [](poly t) {
        if (!t->numb) free_leaf(t->pcoef);
        if (t->numb)
            free_leaf(t);
        else
            free_node(t);
    };
    if (is_number(n) && is_number(m)) return leaf_merge<sign, Use::take, Use::take>(n, m);
    n = terms_of<Use::take>(n);
    m = terms_of<Use::take>(m);
    poly head = nullptr;
    polyptrr at = &head;
    while (n != nullptr && m != nullptr) {
        if (n->exp > m->exp) {
            *at = n;
            n = n->next;
        } else if (n->exp < m->exp) {
            *at = m;
            if (sign == Sign::minus) residue(m) = mod_neg(residue(m));
            m = m->next;
        } else {
            poly a = n, b = m;
            n = n->next;
            m = m->next;
            residue(a) = combine(residue(a), residue(b));
            drop(b);
            if (residue(a) == 0) {
                drop(a);
                continue;
            }
            *at = a;
        }
        at = &(*at)->next;
    }
    *at = n != nullptr ? n : rest_of<sign, Use::take>(m);
    return head != nullptr ? head : zero_leaf();
}

template <Sign sign> void simplest_operate(poly n, poly m, polyptrr p) {
    poly old = *p == n || *p == m ? nullptr : *p;
    *p = simplest_merge<sign>(n, m);
    free_poly(&old);
}

/// Where a monomial meets a chain that it is added to.
struct Meeting {
    polyptrr at;  // the link in front of which or into which node it goes
    poly part;    // the node of the monomial on the level of that chain
};

constexpr int32_t k_longest_walk = 1 << 16;  // nodes without a safe point: a fraction of a millisecond

/// Down through equal exponents to the node that the monomial goes in front of, or whose number takes its
/// own. False after a long walk, or where a constant would have to become a chain.
bool find_meeting(Meeting* m) {
    int32_t steps = 0;
    for (;;) {
        while (*m->at != nullptr && (*m->at)->exp > m->part->exp) {
            if (++steps > k_longest_walk) return false;
            m->at = &(*m->at)->next;
        }
        poly here = *m->at;
        if (here == nullptr || here->exp < m->part->exp) return true;
        if (here->numb) return m->part->numb;
        m->at = &here->pcoef;
        if (!m->part->numb) m->part = m->part->pcoef;
    }
}
}  // namespace

bool insert_monomial(polyptrr p, poly t) {
    Meeting m = {p, t};
    if (!find_meeting(&m)) return false;
    poly here = *m.at;
    if (here != nullptr && here->exp == m.part->exp) {
        imptr sum = leaf_sum(here->ncoef, m.part->ncoef);
        if (iszero(sum)) {
            free_imag(&sum);
            return false;
        }
        free_imag(&here->ncoef);
        here->ncoef = sum;
        free_poly(&t);
        return true;
    }
    while (t != m.part) {
        poly shell = t;
        t = t->pcoef;
        free_node(shell);
    }
    t->next = here;
    *m.at = t;
    return true;
}

void poly_add(poly n, poly m, polyptrr p) { operate<Sign::plus, Use::keep, Use::keep>(n, m, p); }
void better_poly_add(poly n, poly m, polyptrr p) { operate<Sign::plus, Use::take, Use::keep>(n, m, p); }
void best_poly_add(poly n, poly m, polyptrr p) { operate<Sign::plus, Use::take, Use::take>(n, m, p); }
void simplest_poly_add(poly n, poly m, polyptrr p) { simplest_operate<Sign::plus>(n, m, p); }
void poly_sub(poly n, poly m, polyptrr p) { operate<Sign::minus, Use::keep, Use::keep>(n, m, p); }
void better_poly_sub(poly n, poly m, polyptrr p) { operate<Sign::minus, Use::take, Use::keep>(n, m, p); }
void best_poly_sub(poly n, poly m, polyptrr p) { operate<Sign::minus, Use::take, Use::take>(n, m, p); }
void simplest_poly_sub(poly n, poly m, polyptrr p) { simplest_operate<Sign::minus>(n, m, p); }
}  // namespace tolvex
