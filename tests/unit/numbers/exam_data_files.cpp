// The data files: what they hold, and how the start stops when one of them is damaged, short, garbled or
// missing.
#include "numbers/data_files.h"
#include "numbers/gf_tables.h"
#include "numbers/num_assign.h"
#include "numbers/num_compare.h"
#include "numbers/num_mult.h"
#include "numbers/primes.h"
#include "numbers/residue.h"
#include "numbers/ring_switch.h"
#include "tests/support/support.h"

#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <vector>
using namespace tolvex;
namespace {
namespace fs = std::filesystem;

std::string slurp(const fs::path& path) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

void spill(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::binary) << text; }

/// A directory of good files, one of which a test spoils. Every case ends with the good files read again.
class DataFiles : public ::testing::Test {
  protected:
    void SetUp() override {
        test::set_up_once();
        directory_ = fs::temp_directory_path() / ("tolvex_data_" + std::to_string(getpid()));
        fs::create_directories(directory_);
        for (const char* name :
             {"chdat", "Qerrs", "pow228", "pprods", "primelist", "bprimes", "f256d", "f2t16d", "lrgpmes"})
            fs::copy_file(fs::path(TOLVEX_DATA_DIRECTORY) / name, directory_ / name,
                          fs::copy_options::overwrite_existing);
    }
    void TearDown() override {
        starting_up = 1;
        initialize(TOLVEX_DATA_DIRECTORY);
        starting_up = 0;
        fs::remove_all(directory_);
    }
    std::string text(const char* name) { return slurp(directory_ / name); }
    void put(const char* name, const std::string& text) { spill(directory_ / name, text); }
    /// The message that stops the start; empty if it goes on.
    std::string start() {
        std::string directory = directory_.string() + "/";
        const char* path = directory.c_str();
        test::caught = {};
        bool stopped = RAISES(initialize(path));
        set_modulus(-1);
        if (!stopped) return "";
        EXPECT_EQ(test::caught.code, -1000);
        return test::caught.text;
    }
    /// The numbers of a file.
    static std::vector<std::string> words(const std::string& text) {
        std::istringstream in(text);
        return {std::istream_iterator<std::string>(in), {}};
    }
    static std::string joined(const std::vector<std::string>& words) {
        std::string text;
        for (const std::string& w : words) text += w + "\n";
        return text;
    }
    /// The start with word `index` (from the end if negative) of the file replaced.
    std::string start_with(const char* name, long index, const std::string& word) {
        std::string good = text(name);
        std::vector<std::string> w = words(good);
        w[static_cast<size_t>(index < 0 ? static_cast<long>(w.size()) + index : index)] = word;
        put(name, joined(w));
        std::string message = start();
        put(name, good);
        return message;
    }
    std::string start_cut(const char* name, size_t keep) {
        std::string good = text(name);
        std::vector<std::string> w = words(good);
        w.resize(keep);
        put(name, joined(w));
        std::string message = start();
        put(name, good);
        return message;
    }
    fs::path directory_;
};

TEST_F(DataFiles, GoodFilesAreTaken) { EXPECT_EQ(start(), ""); }

TEST_F(DataFiles, AMissingFileIsNamed) {
    const std::vector<std::pair<const char*, const char*>> cases = {
        {"chdat", "can't find chdat."},        {"Qerrs", "can't find Qerrs"},
        {"pow228", "can't find pow228."},      {"pprods", "can't find pprods"},
        {"primelist", "can't find primelist"}, {"bprimes", "can't find bprimes"},
        {"f256d", "can't find f256d"},         {"f2t16d", "can't find f2t16d"},
        {"lrgpmes", "can't find lrgpmes"}};
    for (auto [name, message] : cases) {
        fs::rename(directory_ / name, directory_ / "away");
        EXPECT_EQ(start(), message);
        fs::rename(directory_ / "away", directory_ / name);
    }
    EXPECT_EQ(start(), "");
}

TEST_F(DataFiles, ADamagedEntryIsReported) {
    EXPECT_EQ(start_with("primelist", -1, "42350"), "primelist file is damaged, medium.");
    EXPECT_EQ(start_with("primelist", 1228, "0"), "primelist file is damaged, small.");
    EXPECT_EQ(start_with("bprimes", -1, "65519"), "bprimes file is damaged.");
    EXPECT_EQ(start_with("lrgpmes", -1, "2147483587"), "lrgpmes file is damaged.");
    EXPECT_EQ(start_with("f256d", 254, "29"), "f256d file is damaged 1.");
    EXPECT_EQ(start_with("f256d", 255 + 256 * 257 / 2 - 1, "20"), "f256d file is damaged 2.");
    EXPECT_EQ(start_with("f256d", -1, "79"), "f256d file is damaged 3.");
    EXPECT_EQ(start_with("f2t16d", 65535, "2"), "f2t16d file is damaged 1.");
    EXPECT_EQ(start_with("f2t16d", 64507, "15"), "f2t16d file is damaged 1.5.");
    EXPECT_EQ(start_with("f2t16d", 65536 + 65534, "1"), "f2t16d file is damaged 2.");
    EXPECT_EQ(start_with("f2t16d", 65536 + 2 * 65535 - 1, "1"), "f2t16d file is damaged 3.");
    EXPECT_EQ(start_with("f2t16d", -1, "1"), "f2t16d file is damaged 4.");
}

TEST_F(DataFiles, AShortOrGarbledFileIsReported) {
    EXPECT_EQ(start_cut("pow228", 100), "pow228 file is damaged.");
    EXPECT_EQ(start_cut("pow228", words(text("pow228")).size() - 1), "pow228 file is damaged.");
    EXPECT_EQ(start_cut("pprods", 300), "pprods file is damaged.");
    EXPECT_EQ(start_cut("pprods", words(text("pprods")).size() - 1), "pprods file is damaged.");
    EXPECT_EQ(start_cut("primelist", 1000), "primelist file is damaged, small.");
    EXPECT_EQ(start_cut("primelist", 2000), "primelist file is damaged, medium.");
    EXPECT_EQ(start_cut("bprimes", 1515), "bprimes file is damaged.");
    EXPECT_EQ(start_cut("lrgpmes", 0), "lrgpmes file is damaged.");
    EXPECT_EQ(start_cut("f256d", 254), "f256d file is damaged 1.");
    EXPECT_EQ(start_cut("f256d", 1000), "f256d file is damaged 2.");
    EXPECT_EQ(start_cut("f2t16d", 65535), "f2t16d file is damaged 1.");
    EXPECT_EQ(start_cut("f2t16d", 70000), "f2t16d file is damaged 2.");
    for (const char* name : {"pow228", "pprods", "bprimes", "lrgpmes"})
        EXPECT_EQ(start_with(name, 40, "x17"), std::string(name) + " file is damaged.");
    EXPECT_EQ(start_with("pow228", 0, "99999999999999999999"), "pow228 file is damaged.");
    EXPECT_EQ(start_with("f256d", 300, "256"), "f256d file is damaged 2.")
        << "no product lies outside the field";
    EXPECT_EQ(start_with("f2t16d", 7, "-1"), "f2t16d file is damaged 1.");
    EXPECT_EQ(start_with("pow228", 1, "268435456"), "pow228 file is damaged.") << "no digit exceeds the base";
}

TEST_F(DataFiles, TwoFaultsOfPprodsAreReportedAndPassed) {
    testing::internal::CaptureStdout();
    EXPECT_EQ(start_with("pprods", 598, "48871"), "");
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "*** Tolvex error. error in pprods, last prime.\n48871   48869\n");

    std::vector<std::string> w = words(text("pprods"));
    std::string good = text("pprods");
    size_t last = w.size() - 333;
    ASSERT_EQ(w[last], "332");
    w[last] = "331";
    put("pprods", joined(w));
    testing::internal::CaptureStdout();
    EXPECT_EQ(start(), "");
    fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "*** Tolvex error. error in pprods, last num_prod.\n");
    put("pprods", good);
}

TEST_F(DataFiles, TheNumberOfBuiltinsHasLimits) {
    std::string good = text("Qerrs");
    size_t at = good.find("\n109\n");
    ASSERT_NE(at, std::string::npos);
    auto start_with_count = [&](const std::string& count) {
        put("Qerrs", good.substr(0, at + 1) + count + good.substr(at + 4));
        return start();
    };
    EXPECT_EQ(start_with_count("53"), "number builtins is wrong.");
    EXPECT_EQ(start_with_count("110"), "number builtins is wrong.");
    EXPECT_EQ(start_with_count("many"), "number builtins is wrong.");
    EXPECT_EQ(start_with_count("54"), "");
    EXPECT_EQ(numbuiltins, 54);
    EXPECT_STREQ(builtin[54][0], "Normalize");
    EXPECT_STREQ(builtin[55][0], "b");
    EXPECT_STREQ(builtin[55][1], "");
    EXPECT_EQ(start_with_count("109"), "");
    EXPECT_STREQ(builtin[109][0], "Zcoef");
}

TEST_F(DataFiles, MessageLinesAreCutAndLongOnesShiftTheTable) {
    std::string good = text("Qerrs");
    size_t line_end = good.find('\n');
    std::string rest = good.substr(line_end);
    EXPECT_EQ((put("Qerrs", std::string(100, 'a') + rest), start()), "");
    EXPECT_EQ(std::string(erp.mess[0]), std::string(65, 'a'));
    std::string second = erp.mess[1];
    EXPECT_EQ((put("Qerrs", std::string(1024, 'a') + rest), start()), "");
    EXPECT_EQ(std::string(erp.mess[1]), second);
    // one character more and every later message stands one place too late: the last line is taken for the
    // count
    EXPECT_EQ((put("Qerrs", std::string(1025, 'a') + rest), start()), "number builtins is wrong.");
    EXPECT_EQ(std::string(erp.mess[1]), "a");
    EXPECT_EQ(std::string(erp.mess[2]), second);
}

TEST_F(DataFiles, AShortMessageFileIsReported) {
    std::string good = text("Qerrs");
    EXPECT_EQ((put("Qerrs", good.substr(0, 200)), start()), "Qerrs file is damaged.");
    EXPECT_EQ((put("Qerrs", good.substr(0, good.size() - 3)), start()), "Qerrs file is damaged.");
    size_t at = good.find("\nGCD -");
    ASSERT_NE(at, std::string::npos);
    EXPECT_EQ((put("Qerrs", good.substr(0, at + 1) + "ElevenChars" + good.substr(at + 4)), start()),
              "Qerrs file is damaged.");
}

TEST_F(DataFiles, BuiltinRowsStandInOrderOfTheirIds) {
    EXPECT_EQ(numbuiltins, 109);
    EXPECT_STREQ(builtin[0][0], "Array");
    EXPECT_STREQ(builtin[26][0], "GCD");
    EXPECT_STREQ(builtin[109][0], "Zcoef");
    std::vector<int> internal;
    for (int id = 0; id <= 109; id++) {
        if (builtin[id][1][0] != '*') continue;
        internal.push_back(id);
        EXPECT_EQ(std::string(builtin[id][1]), "*" + std::to_string(id));
    }
    EXPECT_EQ(internal, (std::vector<int>{1, 4, 5, 7, 9, 12, 14, 40, 66, 68, 70, 79, 82, 89, 101, 103}));
    for (int id = 0; id <= 109; id++)
        for (int other = 0; other < id; other++) EXPECT_STRNE(builtin[id][0], builtin[other][0]);
    EXPECT_FALSE(isalpha(builtin[41][0][0])) << "row 41 must not be found";
    EXPECT_STREQ(erp.mess[21], "Division by zero.");
}

/// The value of a chain of base `base`, modulo a prime below 2^31.
uint64_t chain_mod(const number& x, uint64_t base, uint64_t p) {
    uint64_t r = 0;
    for (numptr d = x.head; d != nullptr; d = d->next) r = (r * base + static_cast<uint64_t>(d->value)) % p;
    return r;
}

TEST_F(DataFiles, ChainsHaveTheirValues) {
    constexpr uint64_t p = 2147483629;
    uint64_t power = 1, factorial = 1;
    for (const number& x : two_28) {
        power = (power << 28) % p;
        ASSERT_EQ(chain_mod(x, 100000000, p), power);
    }
    int done = 0;
    for (int i = 0; i < k_tabulated_factorials; i++) {
        EXPECT_TRUE(num_check(&facts[i]));
        for (; done < factnum[i]; done++) factorial = factorial * static_cast<uint64_t>(done + 1) % p;
        ASSERT_EQ(chain_mod(facts[i], k_base, p), factorial);
    }
    EXPECT_EQ(facts[0].lint, 1);
    EXPECT_EQ(facts[1].lint, 3628800);
    int k = 0;
    std::vector<uint64_t> row = {1};
    for (int n = 1; n <= 150; n++) {
        row.push_back(0);
        for (size_t i = row.size() - 1; i > 0; i--) row[i] = (row[i] + row[i - 1]) % p;
        for (int i = 1; n % 3 == 0 && i <= n / 2; i++, k++) {
            ASSERT_TRUE(num_check(binom[k]));
            ASSERT_EQ(chain_mod(*binom[k], k_base, p), row[static_cast<size_t>(i)]) << n << " over " << i;
            if (k >= 80) continue;
            ASSERT_EQ(static_cast<uint64_t>(binom[k]->lint), row[static_cast<size_t>(i)]);
        }
    }
    EXPECT_EQ(k, k_binoms);
}

TEST_F(DataFiles, PrimesAreConsecutive) {
    auto consecutive = [](const auto* table, int count, int64_t first, int64_t last) {
        EXPECT_EQ(table[0], first);
        EXPECT_EQ(table[count - 1], last);
        int64_t n = first;
        for (int i = 0; i < count; i++, n++) {
            while (!is_prime(static_cast<int32_t>(n))) n++;
            ASSERT_EQ(table[i], n);
        }
    };
    consecutive(small_prime, k_small_primes, 2, 9973);
    consecutive(med_prime, k_med_primes, 17021, 42349);
    consecutive(big_prime, k_big_primes, 48871, 65521);
    consecutive(lrgpme, k_lrg_primes, 2147440637, 2147483629);
    const int first[] = {3001, 16087, 16273, 16339, 19997};
    for (int i = 0; i < 5; i++) EXPECT_EQ(prime[i].lint, first[i]);
    int32_t rest[k_primes - 5];
    for (int i = 5; i < k_primes; i++) {
        rest[i - 5] = prime[i].lint;
        ASSERT_EQ(prime[i].head->value, prime[i].lint);
    }
    consecutive(rest, k_primes - 5, 42359, 48869);
    EXPECT_EQ(num_prod[k_num_prods - 1].size, 332);
    EXPECT_EQ(global_list[0], small_prime[7]);
    EXPECT_EQ(global_list[150], small_prime[157]);
}

TEST_F(DataFiles, InverseProductsUndoTheProducts) {
    EXPECT_EQ(modulus, -1) << "the start leaves rational mode in force";
    for (int i = 0; i < k_invs_prods; i++) {
        auto p = static_cast<uint64_t>(prime[6 + i].lint);
        ASSERT_EQ(chain_mod(num_prod[i], k_base, p) * static_cast<uint64_t>(invs_prod[i]) % p, 1u) << i;
    }
}

TEST_F(DataFiles, ChdatStaysOpenAndHoldsInterpolationNumerators) {
    ASSERT_NE(chdat, nullptr);
    rewind(chdat);
    auto next = [] {
        int value = 0;
        EXPECT_EQ(fscanf(chdat, " %d", &value), 1);
        return value;
    };
    constexpr int64_t p = 2147483629;
    auto evaluate = [&](int64_t x) {  // reads one chain
        int64_t sum = 0, previous = 100;
        for (int64_t e = next(); e != 2147483647; e = next()) {
            EXPECT_LT(e, previous);
            previous = e;
            int64_t c = 0;
            for (int digits = next(); digits > 0; digits--) c = (c * k_base + next()) % p;
            for (int64_t i = 0; i < e; i++) c = c * x % p;
            sum = (sum + c) % p;
        }
        return (sum + p) % p;
    };
    for (int n = 1; n <= 38; n++) {
        for (int i = 1; i <= n; i++) {
            int64_t x = 1000 + 17 * n + i, expected = 1;
            for (int j = 1; j <= n; j++)
                if (j != i) expected = expected * (x - j) % p;
            ASSERT_EQ(evaluate(x), expected) << n << " " << i;
        }
    }
    int rest;
    EXPECT_EQ(fscanf(chdat, " %d", &rest), EOF);
    rewind(chdat);
}
}  // namespace
