// make_data SOURCE_DIR TARGET_DIR: writes the nine files of the data directory.
//
// The program reads tables at start-up that would be slow to compute: messages and names, powers of 2^28 in
// decimal, factorials, binomials, prime lists and their products, two finite fields, and polynomials for
// interpolation. All files are whitespace-separated decimal text. A chain stands as a digit count and that
// many digits, most significant first, in base 2^28 unless said otherwise. The counts and end values that the
// readers check are checked here as well: a wrong table stops the build.
#include <cstdint>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace {
[[noreturn]] void fail(const std::string& text) {
    std::cerr << "make_data: " << text << "\n";
    std::exit(1);
}

void require(bool condition, const std::string& text) {
    if (!condition) fail(text);
}

/// A file of numbers, a dozen or so a line.
class NumberFile {
  public:
    explicit NumberFile(const std::string& path) : out_(path, std::ios::binary), path_(path) {
        require(out_.good(), "cannot write " + path);
    }
    ~NumberFile() {
        end_line();
        out_.close();
        require(!out_.fail(), "cannot write " + path_);
    }
    NumberFile(const NumberFile&) = delete;
    NumberFile& operator=(const NumberFile&) = delete;
    void put(int64_t value) {
        std::string text = std::to_string(value);
        if (column_ > 0 && column_ + text.size() + 1 > 100) end_line();
        if (column_ > 0) {
            out_ << ' ';
            column_++;
        }
        out_ << text;
        column_ += text.size();
    }
    void end_line() {
        if (column_ > 0) out_ << '\n';
        column_ = 0;
    }

  private:
    std::ofstream out_;
    std::string path_;
    size_t column_ = 0;
};

/// A non-negative integer in base `Base`, least significant digit first, no leading zero but in 0.
template <uint32_t Base> class Natural {
  public:
    explicit Natural(uint64_t value = 0) {
        do {
            digits_.push_back(static_cast<uint32_t>(value % Base));
            value /= Base;
        } while (value != 0);
    }
    void multiply(uint32_t factor) {
        uint64_t carry = 0;
        for (uint32_t& d : digits_) {
            carry += static_cast<uint64_t>(d) * factor;
            d = static_cast<uint32_t>(carry % Base);
            carry /= Base;
        }
        for (; carry != 0; carry /= Base) digits_.push_back(static_cast<uint32_t>(carry % Base));
        trim();
    }
    void divide_exactly(uint32_t divisor) {
        uint64_t rest = 0;
        for (size_t i = digits_.size(); i-- > 0;) {
            rest = rest * Base + digits_[i];
            digits_[i] = static_cast<uint32_t>(rest / divisor);
            rest %= divisor;
        }
        require(rest == 0, "a division was not exact");
        trim();
    }
    void add(const Natural& other) {
        if (digits_.size() < other.digits_.size()) digits_.resize(other.digits_.size(), 0);
        uint64_t carry = 0;
        for (size_t i = 0; i < digits_.size(); i++) {
            carry += digits_[i] + (i < other.digits_.size() ? other.digits_[i] : 0ull);
            digits_[i] = static_cast<uint32_t>(carry % Base);
            carry /= Base;
        }
        if (carry != 0) digits_.push_back(static_cast<uint32_t>(carry));
    }
    size_t size() const { return digits_.size(); }
    bool is_zero() const { return digits_.size() == 1 && digits_[0] == 0; }
    /// Decimal digits of the head: with base 10^8 the rest of the number has 8 for each further digit.
    size_t head_length() const { return std::to_string(digits_.back()).size(); }
    /// The digits, head first, each with the sign.
    void put_digits(NumberFile& file, int sign = 1) const {
        for (size_t i = digits_.size(); i-- > 0;) file.put(sign * static_cast<int64_t>(digits_[i]));
    }
    void put_chain(NumberFile& file, int sign = 1) const {
        file.put(static_cast<int64_t>(size()));
        put_digits(file, sign);
    }
    uint64_t low_word() const {
        uint64_t value = 0;
        for (size_t i = digits_.size(); i-- > 0;) value = value * Base + digits_[i];
        return value;
    }

  private:
    void trim() {
        while (digits_.size() > 1 && digits_.back() == 0) digits_.pop_back();
    }
    std::vector<uint32_t> digits_;
};
using Chain = Natural<1u << 28>;
using DecimalChain = Natural<100000000>;

/// The primes of first..last, by the sieve of Eratosthenes over that segment.
std::vector<int64_t> primes_between(int64_t first, int64_t last) {
    std::vector<char> composite(static_cast<size_t>(last - first + 1), 0);
    for (int64_t p = 2; p * p <= last; p++) {
        int64_t start = (first + p - 1) / p * p;
        if (start < p * p) start = p * p;
        for (int64_t k = start; k <= last; k += p) composite[static_cast<size_t>(k - first)] = 1;
    }
    std::vector<int64_t> primes;
    for (int64_t n = first < 2 ? 2 : first; n <= last; n++)
        if (!composite[static_cast<size_t>(n - first)]) primes.push_back(n);
    return primes;
}

std::vector<int64_t> primes_exactly(int64_t first, int64_t last, size_t count) {
    std::vector<int64_t> primes = primes_between(first, last);
    require(primes.size() == count && primes.front() == first && primes.back() == last,
            "primes from " + std::to_string(first) + " to " + std::to_string(last) + ": wrong count");
    return primes;
}

// ---- Qerrs ---------------------------------------------------------------------------------------------

// The built-in functions. ORDER BUILTIN_IDS: the row number is the id by which the program knows the
// function. A star marks those that the evaluator takes up through the internal token "*id". Row 41 has no
// function; its name cannot be a token.
const std::vector<std::string> k_builtin_names = {
    "Array",    "Bin*",      "Char",    "Chpoly",   "Codeg*",    "Coef*",     "Colreduce", "Cols*",
    "Content",  "Deg*",      "Denom",   "Deriv",    "Det*",      "Detmin",    "Diag*",     "Divides",
    "Egcd",     "Equal",     "Equals",  "FFLU",     "FFLUC",     "Factor",    "Ignore",    "Flcoef",
    "Func",     "Function",  "GCD",     "Hamilton", "Height",    "Hermite",   "Irred",     "Isprime",
    "Iszero",   "Killden",   "LCM",     "Lcoef",    "Level",     "Lmon",      "Log",       "Lower",
    "Lterm*",   "-none-",    "MSmith",  "Mcoef",    "Mcoefs",    "Minors",    "Minpoly",   "Modmode",
    "Modulus",  "Monless",   "Mons",    "Move",     "Ncoef",     "Nmcoef",    "Normalize", "Ntcoef",
    "Numb",     "Numcon",    "Numer",   "Numvars",  "Odiv",      "Pth",       "Ord",       "Poly",
    "Powermod", "Prime",     "Prod*",   "Pseudet",  "Randint*",  "Raise",     "Rand*",     "Rat",
    "Rcoef",    "Redrowech", "Remquot", "Return",   "Reverse",   "Rname",     "Rowreduce", "SDet*",
    "Sdiv",     "STrans",    "Sigma*",  "Smith",    "Sort",      "Sparse",    "Splice",    "Split",
    "Sqfree",   "Sqrt*",     "Sumall",  "Swap",     "Switchcol", "Switchrow", "Synth",     "Terms",
    "Fterms",   "Time",      "Bell",    "Totdeg",   "Trace",     "Trans*",    "True",      "Var*",
    "Vars",     "Zap",       "ZZ1",     "ZZ2",      "ZZ3",       "Zcoef"};

void write_qerrs(const std::string& source, const std::string& target) {
    constexpr size_t k_messages = 376, k_length = 65;
    std::ifstream in(source + "/error-messages.txt", std::ios::binary);
    require(in.good(), "cannot read " + source + "/error-messages.txt");
    std::ofstream out(target + "/Qerrs", std::ios::binary);
    std::string line;
    size_t count = 0;
    while (std::getline(in, line)) {
        require(line.size() <= k_length, "message " + std::to_string(count + 1) + " is too long");
        out << line << '\n';
        count++;
    }
    require(count == k_messages, "the message file must have 376 lines");
    require(k_builtin_names.size() == 110, "the table of built-in functions must have 110 rows");
    out << k_builtin_names.size() - 1 << '\n';
    for (size_t id = 0; id < k_builtin_names.size(); id++) {
        std::string name = k_builtin_names[id];
        bool internal = name.back() == '*';
        if (internal) name.pop_back();
        out << name << ' ';
        if (internal)
            out << '*' << id << '\n';
        else
            out << "-\n";
    }
    out.close();
    require(!out.fail(), "cannot write Qerrs");
}

// ---- chdat: the numerators of Lagrange interpolation over 1..n, n = 1..38 ------------------------------

/// prod (x - j) over j = 1..n, j not i, as a chain of terms in numeric form.
void put_lagrange_numerator(NumberFile& file, int n, int i) {
    constexpr int64_t k_end_of_chain = 2147483647;
    std::vector<Chain> magnitude = {Chain(1)};  // by exponent; the signs alternate from + at the leading term
    for (int j = 1; j <= n; j++) {
        if (j == i) continue;
        magnitude.insert(magnitude.begin(), Chain(0));
        for (size_t e = 0; e + 1 < magnitude.size(); e++) {
            Chain product = magnitude[e + 1];
            product.multiply(static_cast<uint32_t>(j));
            magnitude[e].add(product);
        }
    }
    size_t degree = magnitude.size() - 1;
    for (size_t e = degree + 1; e-- > 0;) {
        file.put(static_cast<int64_t>(e));
        magnitude[e].put_chain(file, (degree - e) % 2 == 0 ? 1 : -1);
    }
    file.put(k_end_of_chain);
    file.end_line();
}

void write_chdat(const std::string& target) {
    NumberFile file(target + "/chdat");
    for (int n = 1; n <= 38; n++)
        for (int i = 1; i <= n; i++) put_lagrange_numerator(file, n, i);
}

// ---- pow228: powers of 2^28, factorials, binomials -----------------------------------------------------

void put_powers(NumberFile& file) {
    DecimalChain power(1);
    for (int i = 0; i < 130; i++) {
        power.multiply(1u << 28);
        size_t length = power.head_length() + 8 * (power.size() - 1);
        file.put(static_cast<int64_t>(length));
        power.put_digits(file);
        file.end_line();
    }
}

void put_factorials(NumberFile& file) {
    const std::vector<int> arguments = {0,   10,  20,  30,  40,  50,  60,  80,  100, 120, 150,
                                        180, 200, 250, 300, 350, 400, 500, 600, 700, 800, 1000};
    require(arguments.size() == 22, "22 factorials are tabulated");
    for (int n : arguments) file.put(n);
    file.end_line();
    Chain product(1);
    int done = 0;
    for (int n : arguments) {
        while (done < n) product.multiply(static_cast<uint32_t>(++done));
        product.put_chain(file);
        file.end_line();
    }
}

/// Rows n = 3, 6 .. 150 of the triangle, columns 1..n/2. The digit count starts at 1 in each row; a negative
/// integer says that it goes up by one. At the end the first 80, which fit a word, as words.
void put_binomials(NumberFile& file) {
    std::vector<int64_t> words;
    for (int n = 3; n <= 150; n += 3) {
        Chain value(1);
        size_t size = 1;
        for (int i = 1; i <= n / 2; i++) {
            value.multiply(static_cast<uint32_t>(n - i + 1));
            value.divide_exactly(static_cast<uint32_t>(i));
            if (value.size() > size) {
                size++;
                require(value.size() == size, "a binomial grew by two digits");
                file.put(-1);
            }
            value.put_digits(file);
            if (words.size() < 80) words.push_back(static_cast<int64_t>(value.low_word()));
        }
        file.end_line();
    }
    for (int64_t w : words) {
        require(w <= INT32_MAX, "a binomial of the first 80 does not fit a word");
        file.put(w);
    }
}

void write_pow228(const std::string& target) {
    NumberFile file(target + "/pow228");
    put_powers(file);
    put_factorials(file);
    put_binomials(file);
}

// ---- primes --------------------------------------------------------------------------------------------

void put_all(NumberFile& file, const std::vector<int64_t>& values) {
    for (int64_t v : values) file.put(v);
    file.end_line();
}

void write_pprods(const std::string& target) {
    NumberFile file(target + "/pprods");
    std::vector<int64_t> primes = primes_exactly(42359, 48869, 599);
    put_all(file, primes);
    Chain product(1);
    for (int64_t p : primes) {
        product.multiply(static_cast<uint32_t>(p));
        product.put_chain(file);
        file.end_line();
    }
    require(product.size() == 332, "the product of all primes must have 332 digits");
}

void write_prime_lists(const std::string& target) {
    NumberFile primelist(target + "/primelist");
    put_all(primelist, primes_exactly(2, 9973, 1229));
    put_all(primelist, primes_exactly(17021, 42349, 2466));
    NumberFile bprimes(target + "/bprimes");
    put_all(bprimes, primes_exactly(48871, 65521, 1516));
    NumberFile lrgpmes(target + "/lrgpmes");
    put_all(lrgpmes, primes_exactly(2147440637, 2147483629, 2000));
}

// ---- finite fields -------------------------------------------------------------------------------------

/// Product in Z/2[x] modulo x^8+x^4+x^3+x+1.
int mult_8(int a, int b) {
    int product = 0;
    for (; b != 0; b >>= 1) {
        if (b & 1) product ^= a;
        a <<= 1;
        if (a & 0x100) a ^= 0x11B;
    }
    return product;
}

/// Product of h z + l, encoded 256 h + l, in GF(2^8)[z] modulo z^2 + 2 z + 1.
int mult_16(int a, int b) {
    int ah = a >> 8, al = a & 255, bh = b >> 8, bl = b & 255;
    int high = mult_8(ah, bh);  // of z^2 = 2 z + 1
    int h = mult_8(high, 2) ^ mult_8(ah, bl) ^ mult_8(al, bh);
    int l = high ^ mult_8(al, bl);
    return h << 8 | l;
}

void write_f256d(const std::string& target) {
    NumberFile file(target + "/f256d");
    std::vector<int64_t> inverse(256), root(256);
    for (int a = 0; a < 256; a++) {
        root[static_cast<size_t>(mult_8(a, a))] = a;
        for (int b = a; b < 256; b++) {
            if (mult_8(a, b) != 1) continue;
            inverse[static_cast<size_t>(a)] = b;
            inverse[static_cast<size_t>(b)] = a;
        }
    }
    require(inverse[255] == 28 && mult_8(255, 255) == 19 && root[255] == 78,
            "GF(2^8): a check value is wrong");
    put_all(file, std::vector<int64_t>(inverse.begin() + 1, inverse.end()));
    for (int a = 0; a < 256; a++)
        for (int b = a; b < 256; b++) file.put(mult_8(a, b));
    file.end_line();
    put_all(file, root);
}

void write_f2t16d(const std::string& target) {
    constexpr int k_generator = 263;
    constexpr size_t k_order = 65535;
    NumberFile file(target + "/f2t16d");
    std::vector<int64_t> power(k_order + 1), logarithm(k_order + 1), inverse(k_order + 1), root(k_order + 1);
    int value = 1;
    for (size_t i = 0; i <= k_order; i++) {
        power[i] = value;
        if (i < k_order) logarithm[static_cast<size_t>(value)] = static_cast<int64_t>(i);
        require(i == 0 || i == k_order || value != 1, "GF(2^16): the generator has a smaller order");
        value = mult_16(value, k_generator);
    }
    for (size_t i = 0; i < k_order; i++) {
        inverse[static_cast<size_t>(power[i])] = power[k_order - i];
        root[static_cast<size_t>(power[2 * i % k_order])] = power[i];
    }
    require(power[k_order] == 1 && power[64507] == 14 && inverse[65535] == 3602 && logarithm[65535] == 483 &&
                root[65535] == 41708,
            "GF(2^16): a check value is wrong");
    put_all(file, power);
    put_all(file, std::vector<int64_t>(inverse.begin() + 1, inverse.end()));
    put_all(file, std::vector<int64_t>(logarithm.begin() + 1, logarithm.end()));
    put_all(file, root);
}
}  // namespace

int main(int argc, char** argv) {
    if (argc != 3) fail("usage: make_data SOURCE_DIR TARGET_DIR");
    const std::string source = argv[1], target = argv[2];
    write_chdat(target);
    write_qerrs(source, target);
    write_pow228(target);
    write_pprods(target);
    write_prime_lists(target);
    write_f256d(target);
    write_f2t16d(target);
    return 0;
}
