// Random gcd problems of all families in all rings. The answer under the settings of the start is proved by
// an independent method (judge.h); under permuted settings the answer must be the same one.
//
//   gcd_stress [--count N] [--seed S] [--family NAME] [--ring NAME] [--ways N] [--large PERCENT]
//              [--slow SECONDS] [--only I] [--trace] [--singular]
//
// Problem I of seed S is the same whatever the other options are. --only runs that one alone; --singular
// writes a script for an independent system instead of a report:
//   gcd_stress --singular --count 500 | Singular -q
#include "gcd/gcd_modes.h"
#include "gcd/gcd_stash.h"
#include "gcd/polygcd.h"
#include "gcd/polygcd_env.h"
#include "gcd/word_gcd.h"
#include "numbers/decimal.h"
#include "numbers/number_modes.h"
#include "poly/poly_basic.h"
#include "poly/poly_laurent.h"
#include "poly/poly_modes.h"
#include "poly/poly_test.h"
#include "quoly/reduce.h"
#include "tests/stress/judge.h"
#include "tests/stress/problems.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <sys/resource.h>
#include <unistd.h>
using namespace tolvex;
using namespace tolvex::test;
namespace {
struct Options {
    uint64_t count = 3000, seed = 1, only = UINT64_MAX;
    const char *family = nullptr, *ring = nullptr;
    int ways = 2, large = 3;
    double slow = 1;
    bool trace = false, singular = false;
};
struct Tally {
    int64_t problems;
    double seconds, worst;
};
Options options;
std::vector<std::vector<Tally>> tally;  // by family and ring

/// One problem under way, for messages.
struct Run {
    uint64_t number;
    const StressFamily* family;
    const StressRing* ring;
    StressProblem p;
    poly u, v;  // copies of the operands
    poly g;     // the proved gcd
};
}  // namespace

// Seconds of processor time: other processes do not count.
static double now() { return static_cast<double>(clock()) / CLOCKS_PER_SEC; }

[[noreturn]] static void fail(const Run& run, const std::string& what, const std::string& settings,
                              poly result) {
    printf("FAILED --seed %llu --only %llu (%s in %s): %s\n settings:%s\n u = %s\n v = %s\n g = %s\n result "
           "= %s\n",
           static_cast<unsigned long long>(options.seed), static_cast<unsigned long long>(run.number),
           run.family->name, run.ring->ring.name, what.c_str(), settings.c_str(), text_of(run.u).c_str(),
           text_of(run.v).c_str(), text_of(run.g).c_str(), text_of(result).c_str());
    exit(1);
}

static void tell_if_slow(const Run& run, double seconds, const std::string& way) {
    if (seconds < options.slow || options.singular) return;
    printf("slow: %.2f s for --seed %llu --only %llu (%s in %s):%s\n", seconds,
           static_cast<unsigned long long>(options.seed), static_cast<unsigned long long>(run.number),
           run.family->name, run.ring->ring.name, way.c_str());
    fflush(stdout);
}

// ---- ways to ask ---------------------------------------------------------------------------------------

static void expect_same(const Run& run, poly h, const std::string& way) {
    if (!poly_equal(h, run.g)) fail(run, "another gcd", way, h);
    if (!poly_equal(run.p.u, run.u) || !poly_equal(run.p.v, run.v))
        fail(run, "an operand has changed", way, h);
    if (gcd_nesting != 0 || gcd_unproved || polygcd_stack_depth != 0) fail(run, "state left behind", way, h);
}

// As quotients are reduced: a gcd that may be unproved, checked by the divisions.
static void reduced_quotient(const Run& run, const std::string& way) {
    poly h = nullptr, a = nullptr, b = nullptr;
    Lpolygcd(run.p.u, run.p.v, &h, 1, polynames);
    reduce(run.p.u, run.p.v, &h, &a, &b);
    gcd_unproved = 0;
    gcd_normal_form(&h);
    expect_same(run, h, way + " reduced");
    free_poly(&h), free_poly(&a), free_poly(&b);
}

// Operands that may be used up, as from inside.
static void used_up(const Run& run, const std::string& way) {
    poly h = nullptr, a = copy_of(run.p.u), b = copy_of(run.p.v);
    gcd_nesting++;
    gcd_unproved = 0;
    polygcd(a, b, &h, 0, 1, 1, polynames, 0, 0, 1);
    gcd_nesting--;
    bool proved = !gcd_unproved;
    gcd_unproved = 0;
    if (proved) expect_same(run, h, way + " used up");
    free_poly(&h), free_poly(&a), free_poly(&b);
}

static bool is_free_of_main(const polynode* p) { return is_number(p) || p->exp == 0; }

// The degree alone: 0 is a proof, and a number proves that the gcd is one.
static void leaving_early(const Run& run, const std::string& way) {
    poly h = nullptr;
    polygcd(run.p.u, run.p.v, &h, 1, 1, 1, polynames, 1, 1, 1);
    bool right = (!is_free_of_main(h) || is_free_of_main(run.g)) && (!is_number(h) || is_number(run.g));
    if (!right) fail(run, "wrong degree", way + " leave_early", h);
    free_poly(&h);
}

static void permuted_way(const Run& run, Rng& rng) {
    default_settings();
    std::string way = permuted_settings(run.p, rng);
    poly h = nullptr;
    double start = now();
    switch (rng() % 6) {
    case 0:
    case 1:
        Lpolygcd2(run.p.u, run.p.v, &h, polynames);
        break;
    case 2:
    case 3:
        polygcd(run.p.v, run.p.u, &h, 0, static_cast<boolean>(rng() % 4 != 0),
                static_cast<boolean>(rng() % 2), polynames, 1, 1, static_cast<boolean>(rng() % 2));
        break;
    case 4:
        used_up(run, way);
        break;
    case 5:
        leaving_early(run, way);
        reduced_quotient(run, way);
    }
    if (h != nullptr) expect_same(run, h, way);
    if (lookupgcd > 0) {
        polygcd(run.p.u, run.p.v, &h, 0, 1, 1, polynames, 1, 1, 1);
        expect_same(run, h, way + " again, with the stash filled");
    }
    free_poly(&h);
    tell_if_slow(run, now() - start, way);
    default_settings();
}

// ---- one problem ---------------------------------------------------------------------------------------

static void prove(const Run& run, const std::string& way, Rng& rng) {
    // Modulo a composite the gcd with a number is that of residues and modulus: no polynomial divides by it.
    if (run.ring->composite && (is_number(run.p.u) || is_number(run.p.v))) return;
    std::string wrong = judge_gcd(run.p.u, run.p.v, run.g, rng);
    if (!wrong.empty()) fail(run, wrong, way, run.g);
}

// Monomials are units under laurent: the gcd is that of the operands without their lowest exponents.
static void clear_negative_exponents(Run* run, Rng& rng) {
    run->u = copy_of(run->p.u);
    run->v = copy_of(run->p.v);
    Lpolygcd2(run->p.u, run->p.v, &run->g, polynames);
    for (poly* p : {&run->p.u, &run->p.v}) {
        poly list = clear_bads(p, INT32_MAX, INT32_MAX);
        free_exponent_list(&list);
    }
    laurent = 0;
    prove(*run, " laurent", rng);
}

static void solve(Run* run, Rng& rng) {
    if (run->p.negative_exponents) clear_negative_exponents(run, rng);
    poly_assign(run->p.u, &run->u);
    poly_assign(run->p.v, &run->v);
    double start = now();
    Lpolygcd2(run->p.u, run->p.v, &run->g, polynames);
    tell_if_slow(*run, now() - start, " settings of the start");
    prove(*run, " settings of the start", rng);
    for (int k = 0; k < options.ways && !run->ring->composite; k++) permuted_way(*run, rng);
}

// ---- a script for an independent system ----------------------------------------------------------------

static std::string decimal(const number* n) {
    if (lintmode) return std::to_string(n->lint);
    std::string digits;  // base 10, lowest first
    bool negative = false;
    for (const numnode* d = n->head; d != nullptr; d = d->next) {
        negative = negative || d->value < 0;
        int64_t carry = d->value < 0 ? -d->value : d->value;
        for (char& c : digits) {
            carry += int64_t{c - '0'} << 28;
            c = static_cast<char>('0' + carry % 10);
            carry /= 10;
        }
        for (; carry != 0; carry /= 10) digits += static_cast<char>('0' + carry % 10);
    }
    if (digits.empty()) digits.push_back('0');
    if (negative) digits += '-';
    std::reverse(digits.begin(), digits.end());
    return digits;
}

static void write_terms(const polynode* p, int level, const std::string& factors) {
    for (; p != nullptr; p = p->next) {
        std::string f = factors;
        if (p->exp != 0)
            f.append("*x(").append(std::to_string(level)).append(")^").append(std::to_string(p->exp));
        if (p->numb)
            printf("+(%s)%s", decimal(p->ncoef).c_str(), f.c_str());
        else
            write_terms(p->pcoef, level + 1, f);
    }
}

static void write_script(const Run& run) {
    if (finf || run.ring->composite) return;
    printf("ring r%llu=%d,(x(1..%d)),dp;\n", static_cast<unsigned long long>(run.number),
           modularmode ? modulus : 0, k_stress_variables);
    const char* names[] = {"u", "v", "g"};
    poly values[] = {run.p.u, run.p.v, run.g};
    for (int i = 0; i < 3; i++) {
        printf("poly %s=0", names[i]);
        write_terms(values[i], 1, "");
        printf(";\n");
    }
    printf("poly h=gcd(u,v);if(h/leadcoef(h)!=g/leadcoef(g)){\"DIFFERENT %llu\";}\n",
           static_cast<unsigned long long>(run.number));
}

// ---- the run -------------------------------------------------------------------------------------------

static bool wanted(const char* option, const char* name) {
    return option == nullptr || strcmp(option, name) == 0;
}

static void one_problem(uint64_t number) {
    size_t families = stress_families.size(), f = number % families,
           r = number / families % stress_rings.size();
    Run run = {number, &stress_families[f], &stress_rings[r], {}, nullptr, nullptr, nullptr};
    if (!wanted(options.family, run.family->name) || !wanted(options.ring, run.ring->ring.name)) return;
    Rng rng(options.seed * 1000003u + number);
    use_ring(run.ring->ring);
    default_settings();
    int64_t before = live_records();
    int32_t chance = random_int(rng, 0, 99), size = chance < options.large ? 2 : chance < 20 ? 1 : 0;
    double start = now();
    run.family->make(rng, size, &run.p);
    if (options.trace) {
        printf("%llu %s in %s\n", static_cast<unsigned long long>(number), run.family->name,
               run.ring->ring.name);
        fflush(stdout);
    }
    if (!poly_iszero(run.p.u) && !poly_iszero(run.p.v)) {
        solve(&run, rng);
        if (options.singular) write_script(run);
    }
    free_problem(&run.p);
    free_poly(&run.u), free_poly(&run.v);
    default_settings();
    free_poly(&run.g);
    if (live_records() != before) fail(run, "records lost", "", nullptr);
    Tally& t = tally[f][r];
    double seconds = now() - start;
    t.problems++;
    t.seconds += seconds;
    t.worst = std::max(t.worst, seconds);
    use_integers();
}

static void report() {
    printf("%-16s %9s %9s %9s   slowest ring\n", "family", "problems", "ms each", "worst ms");
    int64_t all = 0;
    double seconds = 0;
    for (size_t f = 0; f < stress_families.size(); f++) {
        Tally sum = {};
        size_t slowest = 0;
        for (size_t r = 0; r < stress_rings.size(); r++) {
            const Tally& t = tally[f][r];
            sum.problems += t.problems;
            sum.seconds += t.seconds;
            if (t.worst >= sum.worst) sum.worst = t.worst, slowest = r;
        }
        all += sum.problems;
        seconds += sum.seconds;
        if (sum.problems > 0)
            printf("%-16s %9lld %9.3f %9.1f   %s\n", stress_families[f].name,
                   static_cast<long long>(sum.problems),
                   sum.seconds / static_cast<double>(sum.problems) * 1e3, sum.worst * 1e3,
                   stress_rings[slowest].ring.name);
    }
    printf("%lld problems in %.1f s, %d ways each beside the first\ncalls ended by\n",
           static_cast<long long>(all), seconds, options.ways);
    for (int32_t i = 0; i < k_gcd_steps; i++)
        if (gcd_ended_by[i] > 0)
            printf("  %-24s %12lld\n", gcd_step_name(i), static_cast<long long>(gcd_ended_by[i]));
}

static void read_options(int argc, char** argv) {
    for (int i = 1; i < argc; i++) {
        std::string name = argv[i];
        const char* value = i + 1 < argc ? argv[i + 1] : "";
        if (name == "--trace" || name == "--singular") {
            (name == "--trace" ? options.trace : options.singular) = true;
            continue;
        }
        i++;
        if (name == "--count")
            options.count = strtoull(value, nullptr, 10);
        else if (name == "--seed")
            options.seed = strtoull(value, nullptr, 10);
        else if (name == "--only")
            options.only = strtoull(value, nullptr, 10);
        else if (name == "--family")
            options.family = value;
        else if (name == "--ring")
            options.ring = value;
        else if (name == "--ways")
            options.ways = atoi(value);
        else if (name == "--large")
            options.large = atoi(value);
        else if (name == "--slow")
            options.slow = atof(value);
        else {
            fprintf(stderr, "unknown option %s\n", name.c_str());
            exit(2);
        }
    }
}

static void raise_stack_limit(char** argv) {
    constexpr rlim_t k_stack = rlim_t{256} << 20;
    rlimit limit;
    if (getrlimit(RLIMIT_STACK, &limit) != 0 || limit.rlim_cur >= k_stack || limit.rlim_max < k_stack) return;
    limit.rlim_cur = k_stack;
    if (setrlimit(RLIMIT_STACK, &limit) == 0) execv("/proc/self/exe", argv);  // takes effect at exec
}

int main(int argc, char** argv) {
    raise_stack_limit(argv);
    read_options(argc, argv);
    setvbuf(stdout, nullptr, _IOLBF, 0);
    set_up_once();
    use_variables(k_stress_variables);
    tally.assign(stress_families.size(), std::vector<Tally>(stress_rings.size()));
    uint64_t first = options.only != UINT64_MAX ? options.only : 0,
             end = options.only != UINT64_MAX ? options.only + 1 : options.count;
    for (uint64_t i = first; i < end; i++) one_problem(i);
    if (!options.singular) report();
    return 0;
}
