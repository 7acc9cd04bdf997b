// One interpolation: images of the gcd at points of the field, scaled to a known leading coefficient.
#include "gcd/content.h"
#include "gcd/gcd_modes.h"
#include "gcd/multivar_chinese.h"
#include "gcd/polygcd.h"
#include "poly/div_general.h"
#include "poly/poly_basic.h"
#include "poly/poly_modes.h"
#include "poly/poly_monic.h"
#include "poly/poly_mult.h"
#include "poly/poly_scale.h"
#include "poly/poly_shape.h"
#include "poly/poly_test.h"
#include "storage/interrupt.h"
#include "storage/progress.h"
#include "storage/scratch.h"

#include <cstdio>
namespace tolvex {
namespace {
/// Operands in transposed form and the images so far.
struct SubChineseEnv {
    WordField f;
    MainRows x, y;
    int32_t xdeg, ydeg;  // degrees in level 2, which an image must keep
    poly d1;             // gcd of the leading coefficients in level 2, one level down
    bool lc_not_1;       // d1 is no number
    MainRows d1_rows;    // of d1, where that is no number
    int64_t the_degree;  // points needed, less 1
    int32_t wdeg;        // degree of the good images
    int32_t count;       // of images
    poly* image;         // one level down
    uint32_t* point;
    polypt pt;
};
enum class Taken { good, bad, lower, coprime };
enum class Points { enough, too_few, coprime };
}  // namespace

// A random step of at most a third of the room for wide spacings: points in a row would share bad luck.
static int64_t random_part(int64_t room, int64_t middle) {
    int64_t part = room < 16 ? room : room < 61 ? middle : room / 3;
    return part;
}

static int64_t random_below(int64_t n) { return wf_random_below(static_cast<uint32_t>(n)); }

// The first point; -1: the field is too small.
static int64_t first_point(const SubChineseEnv& env) {
    int64_t s = (int64_t{env.f.p} - 1) / (env.the_degree + 1);
    if (s == 0) return -1;
    return s == 1 ? 0 : random_below(random_part(s, 10)) + 1;
}

// The point after a good one, less 1; -1: the field is used up.
static int64_t spread(const SubChineseEnv& env, int64_t val) {
    int64_t t = (int64_t{env.f.p} - val - 1) / (env.the_degree - env.count + 1);
    if (t == 0) return -1;
    int64_t part = random_part(t, 11);
    if (part > 1) part--;
    return val + random_below(part);
}

// *g, one level down, gets the leading coefficient d1(point). False: the point is bad.
static bool set_leading_coefficient(const SubChineseEnv& env, uint32_t point, polyptrr g) {
    polypt level_2 = env.pt->next;
    poly c = (*g)->pcoef;  // what stands there now, one level further down
    if (!env.lc_not_1) return is_number(c);
    poly w = main_rows_at(env.f, env.d1_rows, point), q = nullptr;
    boolean failed = poly_iszero(w) || (is_number(w) && !is_number(c));
    if (!failed && is_number(c)) {
        q = w;
        w = nullptr;
        if (c->ncoef->lint != 1)
            mod_num_poly_mult(&q,
                              static_cast<int32_t>(wf_inverse(env.f, static_cast<uint32_t>(c->ncoef->lint))));
    } else if (!failed) {
        gen_poly_divide(w, c, &q, level_2->next, &failed);
    }
    if (!failed) {
        add_pad(&q, 1);
        poly_mult(*g, q, g, level_2);
    }
    free_poly(&w);
    free_poly(&q);
    return !failed;
}

// The gcd of the images at a point, one level down, in *g. Nested calls neither store nor leave traces.
static void gcd_at_point(poly x, poly y, polyptrr g, polypt pt) {
    GcdCounters counters = gcd_counters_save();
    lookupgcd = -1000;
    polygcd(x, y, g, 0, 1, 0, pt, 0, 0, 0);
    gcd_counters_restore(counters);
}

static Taken take_point(SubChineseEnv& env, uint32_t point) {
    poly x = main_rows_at(env.f, env.x, point), y = main_rows_at(env.f, env.y, point), g = nullptr;
    Taken kind = Taken::bad;
    if (x->exp == env.xdeg && y->exp == env.ydeg) {
        gcd_at_point(x, y, &g, env.pt->next);
        int32_t this_deg = g->exp;
        if (env.count == 0) env.wdeg = this_deg;
        if (this_deg == 0)
            kind = Taken::coprime;
        else if (this_deg < env.wdeg)
            kind = Taken::lower;
        else if (this_deg == env.wdeg && set_leading_coefficient(env, point, &g))
            kind = Taken::good;
    }
    free_poly(&x);
    free_poly(&y);
    if (kind == Taken::good) {
        env.image[env.count] = g;
        env.point[env.count++] = point;
    } else {
        free_poly(&g);
    }
    return kind;
}

static Points collect_images(SubChineseEnv& env) {
    int64_t val = first_point(env);
    if (val < 0) return Points::too_few;
    for (; val < env.f.p; val++) {
        poll_interrupt();
        switch (take_point(env, static_cast<uint32_t>(val))) {
        case Taken::bad:
            break;
        case Taken::lower:
            return Points::too_few;
        case Taken::coprime:  // nothing in common in level 2, and the contents there have nothing in common
            return Points::coprime;
        case Taken::good:
            if (env.count > env.the_degree) return Points::enough;
            val = spread(env, val);
            if (val < 0) return Points::too_few;
        }
    }
    return Points::too_few;
}

// *r without its content in level 2, a trace of the scaling.
static void remove_scaling(polyptrr r, polypt pt) {
    boolean sure = gcd_sure;
    for (int32_t tries = 1;; tries++) {
        poly t = content_2(*r, pt), q = nullptr;
        boolean failed = 0;
        bool plain = is_number(t);
        if (!plain) gen_poly_divide(*r, t, &q, pt, &failed);
        free_poly(&t);
        if (plain) break;
        if (!failed) {
            free_poly(r);
            *r = q;
            break;
        }
        if (tries > 10) tolvex_error(" too many failures, sub_mod_multivar_Chinese.");
        if (verbose) printf("poly divide retry, sub_multivar 2\n");
        if (tries >= 5) gcd_sure = 1;
    }
    gcd_sure = sure;
}

// The scaled images need as many points as the gcd and d1 have degrees together.
static void common_leading_coefficient(SubChineseEnv& env, poly x, poly y, int32_t expo) {
    poly a = leading_coef_level_two(x, env.xdeg), b = leading_coef_level_two(y, env.ydeg);
    polygcd(a, b, &env.d1, 0, 1, 1, env.pt->next, 0, 0, 1);
    free_poly(&a);
    free_poly(&b);
    env.lc_not_1 = !is_number(env.d1);
    env.the_degree = int64_t{expo} + env.d1->exp;
}

bool sub_mod_multivar_Chinese(poly x, poly y, polyptrr r, int32_t expo, int32_t xdeg, int32_t ydeg,
                              polypt pt) {
    if (expo <= 0) return false;
    ScratchMark mark = scratch_mark();
    SubChineseEnv env = {};
    env.f = word_field_ring();
    env.pt = pt;
    env.xdeg = xdeg;
    env.ydeg = ydeg;
    common_leading_coefficient(env, x, y, expo);
    Points points = Points::too_few;
    if (env.the_degree < env.f.p) {
        env.x = main_rows(x);
        env.y = main_rows(y);
        if (env.lc_not_1) env.d1_rows = main_rows(env.d1);
        env.image = scratch_array<poly>(env.the_degree + 1);
        env.point = scratch_array<uint32_t>(env.the_degree + 1);
        points = collect_images(env);
        free_poly(&env.x.tree);
        free_poly(&env.y.tree);
        free_poly(&env.d1_rows.tree);
    }
    if (points == Points::enough) {
        free_poly(r);
        *r = interpolate_main(env.f, env.image, env.point, env.count);
        if (env.lc_not_1) remove_scaling(r, pt);
        monic_poly(r);
    } else if (points == Points::coprime) {
        poly_set(1, r);
    }
    for (int32_t i = 0; i < env.count; i++) free_poly(&env.image[i]);
    free_poly(&env.d1);
    scratch_release(mark);
    return points != Points::too_few;
}
}  // namespace tolvex
