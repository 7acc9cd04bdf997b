// The warnings that stand in the code: their texts, with the line feeds around them.
#include "gcd/gcd_modes.h"
#include "language/ports.h"

#include <gtest/gtest.h>
#include <string>
using namespace tolvex;
namespace {
std::string warned(int32_t code, const char* text = "x") {
    testing::internal::CaptureStdout();
    warning(static_cast<Err>(code), text);
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}
std::string framed(const std::string& text) { return "\n *** Warning.\n" + text + "\n"; }
}  // namespace

TEST(Warnings, TextsOfTheirOwn) {
    EXPECT_EQ(warned(1), framed(" Specified factor for Det is unusable. Will ignore it.\n"));
    EXPECT_EQ(warned(2), framed(" Specified degree is unreasonable. Will ignore it.\n"));
    EXPECT_EQ(warned(3), framed(" Power is of use only over ground rings Z or Z/p.\n"));
    EXPECT_EQ(warned(4), framed(" With even power, |power| must be 2^k, and modulus mod 4 must equal 3.\n"));
    EXPECT_EQ(warned(5), framed(" With odd power, gcd(|power|, modulus-1) must be 1.\n"));
    EXPECT_EQ(warned(90), framed(" *** Can't do Det\n"));
}

TEST(Warnings, NamesStandInThem) {
    EXPECT_EQ(warned(19, "foo"), framed(" *** Undefined variable: foo.  will use 0\n"));
    EXPECT_EQ(warned(22, "y"),
              framed(" *** Trying to divide by 0, in variable: y.  will set quotient to 0\n"));
    std::string text = warned(342, "v");
    EXPECT_EQ(text.substr(0, 15), "\n *** Warning.\n");
    EXPECT_NE(text.find(" If necessary, do a panic stop as soon as possible. Then if\n"
                        " necessary, delete the parameter v.\n\n"),
              std::string::npos)
        << text;
    EXPECT_EQ(warned(200, "Det").substr(0, 33), "\n *** Warning.\n *** Can't do Det\n");
}

TEST(Warnings, ANegativeLoopCounterStartsAgain) {
    c_cntcount = a_cntcount = d_cntcount = -1;
    EXPECT_EQ(warned(0), framed(" *** Loop counter in Content is negative.  Will reset.\n"));
    EXPECT_EQ(c_cntcount, 200001);
    EXPECT_EQ(a_cntcount, 200001);
    EXPECT_EQ(d_cntcount, 200001);
    c_cntcount = a_cntcount = d_cntcount = 0;
}
