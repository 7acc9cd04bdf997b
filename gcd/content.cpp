#include "gcd/content.h"

#include "gcd/gcd_modes.h"
#include "gcd/num_content.h"
#include "gcd/polygcd.h"
#include "gcd/word_gcd.h"
#include "poly/div_internal.h"
#include "poly/evaluate.h"
#include "poly/field_shape.h"
#include "poly/poly_basic.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "poly/size_estimates.h"
#include "storage/interrupt.h"
#include "storage/progress.h"
namespace tolvex {
// ---- the coefficients of one or two polynomials --------------------------------------------------------

static constexpr int32_t k_most_work = 200000;  // steps of search in one computation

namespace {
/// What the three forms of the content differ in.
struct ContentForm {
    const char* title;            // of the counter line
    int32_t* count;               // steps of search so far
    int32_t* count_depth;         // the level where counting began
    int32_t levels;               // so many levels below it there is no search any more
    int32_t small, second_small;  // a coefficient below one of these sizes ends the search
};

/// One content under way. The operands stay two lists.
struct ContentRun {
    poly chain[2];  // the second may be nil
    boolean save[2];
    polypt below;  // the variable of the coefficients
    boolean allcons;
    poly first, second;  // the terms whose coefficients meet first; second may be nil
    boolean save_first, save_second;
};
}  // namespace

/// All terms of both operands in turn.
template <class Visit> static void each_term(const ContentRun& run, Visit visit) {
    for (int32_t side = 0; side < 2; side++)
        for (poly t = run.chain[side]; t != nullptr; t = t->next)
            if (!visit(t, run.save[side])) return;
}

/// True if a coefficient of p is a number, which makes the content a number: the constant term of p, or the
/// coefficient of another term.
static bool has_number_coefficient(const polynode* p) {
    for (; p != nullptr; p = p->next)
        if (p->numb || is_number(p->pcoef)) return true;
    return false;
}

/// No polynomial divides all coefficients of p but a unit: they are numbers or in the field, or one of them
/// is.
static bool content_is_number(const polynode* p, polypt pt) {
    if (field_depth > 0 && pt->depth >= field_depth) return true;
    return number_polys == 1 || has_number_coefficient(p) || all_coefs_invrtble(p, pt->depth);
}

/// The two smallest coefficients become first and second.
static void find_smallest(ContentRun& run, const ContentForm& form) {
    int32_t size = INT32_MAX, second_size = INT32_MAX;
    each_term(run, [&](poly t, boolean save) {
        if (size < form.small || second_size < form.second_small || *form.count > k_most_work) return false;
        ++*form.count;
        if (t->numb) tolvex_error(" *** pp numb in content");
        int32_t s = bigger_node_total(t->pcoef);
        if (s < size) {
            run.second = run.first, run.save_second = run.save_first, second_size = size;
            run.first = t, run.save_first = save, size = s;
        } else if (s < second_size) {
            run.second = t, run.save_second = save, second_size = s;
        }
        return true;
    });
}

/// *r := the gcd of *r and c.
static void take_in(polyptrr r, poly c, const ContentRun& run, boolean save) {
    poly so_far = *r;
    *r = nullptr;
    polygcd(so_far, c, r, 0, 1, run.allcons, run.below, 0, save, 0);
    free_poly(&so_far);
}

/// The gcd of all coefficients, none of which is a number. The search is made, or the first term is the
/// starter.
static poly gcd_of_coefficients(ContentRun& run, const ContentForm& form, bool search, boolean verbon) {
    bool shown = verbose && verbon;
    if (shown) {
        int32_t terms = poly_length(run.chain[0]) + (run.chain[1] != nullptr ? poly_length(run.chain[1]) : 0);
        dumpitt(form.title, terms - 1, 1, 1, 0);
    }
    if (search) find_smallest(run, form);
    if (run.first == nullptr) run.first = run.chain[0], run.save_first = run.save[0];
    poly r = nullptr;
    if (run.second != nullptr)
        polygcd(run.first->pcoef, run.second->pcoef, &r, 0, 1, run.allcons, run.below, run.save_first,
                run.save_second, 0);
    else
        poly_assign(run.first->pcoef, &r);
    int32_t done = 1;
    each_term(run, [&](poly t, boolean save) {
        if (poly_eq_1(r)) return false;
        if (t == run.first || t == run.second) return true;
        poll_interrupt();
        if (t->numb) tolvex_error(" *** q numb in content");
        if (shown) dumpitt(" ", done, 0, 0, 0);
        done++;
        take_in(&r, t->pcoef, run, save);
        return true;
    });
    if (shown) decr_dumpitt(1, 1, verbose);
    gcd_normal_form(&r, run.below);
    return r;
}

static void give(polyptrr r, poly fresh) {
    free_poly(r);
    *r = fresh;
}

// ---- content, aux_content, dual_content ----------------------------------------------------------------

void content(poly q, polyptrr r, polypt pt, boolean verbon, boolean allcons, boolean qsave) {
    if (content_is_number(q, pt)) {
        gcd_coefs(q, r);
        return;
    }
    ContentForm form = {"Content, counting to ", &c_cntcount, &c_cntdepth, 10, 25, 50};
    ContentRun run = {{q, nullptr}, {qsave, qsave}, pt->next, allcons, nullptr, nullptr, qsave, qsave};
    if (c_cntcount == 0) {
        c_cntdepth = pt->depth;
        for (poly p = q; p->exp == 0 && p->next == nullptr && !p->numb; p = p->pcoef) c_cntdepth++;
    }
    bool search = c_cntdepth + form.levels >= pt->depth && c_cntcount <= k_most_work;
    give(r, gcd_of_coefficients(run, form, search, verbon));
}

/// *r := the gcd of the integer contents of p and q; 1 in lintmode.
static void number_content(poly p, poly q, polyptrr r) {
    poly c = nullptr;
    poly_set(1, &c);
    common_content(p, q, c->ncoef);
    give(r, c);
}

void aux_content(poly p, poly q, polyptrr r, polypt pt, boolean verbon, boolean allcons, boolean psave,
                 boolean qsave) {
    if (is_number(p) || content_is_number(p, pt) || content_is_number(q, pt)) {
        number_content(p, q, r);
        return;
    }
    ContentForm form = {"Aux Content, counting to ", &a_cntcount, &a_cntdepth, 10, 20, 40};
    ContentRun run = {{p, q}, {psave, qsave}, pt->next, allcons, nullptr, nullptr, psave, psave};
    if (a_cntcount == 0) a_cntdepth = pt->depth;
    bool search = a_cntdepth + form.levels >= pt->depth && a_cntcount <= k_most_work &&
                  big_node_total(p->pcoef) >= form.small;
    give(r, gcd_of_coefficients(run, form, search, verbon));
}

void dual_content(poly p, poly q, polyptrr r, polypt pt, boolean verbon, boolean allcons, boolean psave,
                  boolean qsave) {
    if (content_is_number(p, pt) || content_is_number(q, pt)) {
        number_content(p, q, r);
        return;
    }
    ContentForm form = {"Dual Content, counting to ", &d_cntcount, &d_cntdepth, 2, 20, 40};
    ContentRun run = {{p, q}, {psave, qsave}, pt->next, allcons, nullptr, nullptr, psave, psave};
    if (d_cntcount == 0) {
        int32_t deeper = quick_depth_below(p, pt->depth), other = quick_depth_below(q, pt->depth);
        d_cntdepth = pt->depth + (deeper > other ? deeper : other);
    }
    bool search = d_cntdepth + form.levels >= pt->depth && d_cntcount <= k_most_work &&
                  bigger_node_total(p->pcoef) >= form.small;
    give(r, gcd_of_coefficients(run, form, search, verbon));
}

// ---- contents in several variables ---------------------------------------------------------------------

/// A variable record in front of pt, for a chain of coefficients that stand at the level of pt.
static polydata level_above(polypt pt) {
    polydata above = {};
    above.next = pt;
    above.depth = static_cast<int16_t>(pt->depth - 1);
    return above;
}

/// Appends the coefficients of p as a polynomial in the levels lev to last, all at p's own level, as terms of
/// one chain. False: one of them is a number.
static bool collect_coefficients(const polynode* p, int32_t lev, int32_t last, poly* list, int32_t* count) {
    if (is_number(p)) return false;
    poly parts = split_by_level(p, lev);
    bool polynomials = true;
    for (poly* at = &parts; *at != nullptr && polynomials;) {
        poly t = *at;
        polynomials = !t->numb && !is_number(t->pcoef);
        if (lev < last || !polynomials) {
            polynomials = polynomials && collect_coefficients(t->pcoef, lev + 1, last, list, count);
            at = &t->next;
            continue;
        }
        *at = t->next;
        t->exp = ++*count;
        t->next = *list;
        *list = t;
    }
    free_poly(&parts);
    return polynomials;
}

void general_content(poly p, int16_t depth, polyptrr r, polypt pt, boolean* wantr, boolean wantcons) {
    if (p->exp == 0) tolvex_error(" 0 exp head node in general_content");
    poly list = nullptr, s = nullptr;
    int32_t count = 0, last = quick_depth_below(p, pt->depth) + 1;
    bool whole = last <= depth, number = !whole && !collect_coefficients(p, depth + 1, last, &list, &count);
    whole = whole || (!number && count == 1);
    if (number) {
        gcd_coefs(p, &s);
    } else if (whole && !*wantr) {
        poly_set(1, &s);
        *wantr = 1;
    } else if (list == nullptr) {
        poly_assign(p, &s);
        gcd_normal_form(&s);
    } else {
        polydata above = level_above(pt);
        content(list, &s, &above, 0, wantcons, 0);
    }
    free_poly(&list);
    give(r, s);
}

poly content_in_level(poly p, int32_t lev, polypt pt) {
    poly s = nullptr;
    if (is_number(p)) {
        gcd_coefs(p, &s);
        return s;
    }
    // the variable of that level above all others: its coefficients have the shape that is wanted
    poly split = split_by_level(p, lev);
    polydata above = level_above(pt);
    content(split, &s, &above, 0, 1, 0);
    free_poly(&split);
    return s;
}

poly content_fresh(poly u, polypt pt) {
    poly r = nullptr;
    content(u, &r, pt, 0, 0, 1);
    return r;
}

poly without_content(poly p, const polynode* c, polypt pt) {
    if (poly_eq_1(c)) return p;
    poly padded = nullptr, q = nullptr, copy = nullptr;
    poly_assign(c, &copy);
    append_term(&padded, 0, copy);
    bool exact = divide_trees(p, padded, &q, pt);
    free_poly(&padded);
    if (!exact) return p;  // zero divisors: the caller divides out what it gets
    free_poly(&p);
    return q;
}
}  // namespace tolvex
