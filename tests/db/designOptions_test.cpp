// SPDX-License-Identifier: BSD-3-Clause
// The command-line options.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "app/parameters.h"
#include "db/design.h"
#include "support/guards.h"

namespace {

/// One reading of a command line, with all parameters built in before it.
class Options {
public:
    explicit Options(std::vector<std::string> words)
    {
        words.insert(words.begin(), "vireloce");
        std::vector<char*> argv;
        for (std::string& word : words) {
            argv.push_back(word.data());
        }
        const int count = static_cast<int>(argv.size());
        argv.push_back(nullptr);
        report = test::reportOf([&] { good = design.parseParameters(count, argv.data()); });
    }

private:
    test::ParameterGuard m_parameters;

public:
    Design design;
    bool good = false;
    std::string report;
};

TEST(ParseParameters, NoArgumentsKeepEverySetting)
{
    const Options o({});
    EXPECT_TRUE(o.good);
    EXPECT_EQ(o.report, "STAT | Parameters: \n");
    EXPECT_EQ(o.design.placePath, "sparc_exu_alu");
    EXPECT_EQ(o.design.designName, "sparc_exu_alu");
    EXPECT_EQ(o.design.cellPath, "../benchNangate_shifted");
    EXPECT_EQ(o.design.algo, 0);
    EXPECT_EQ(SITE_WIDTH, 190);
    EXPECT_EQ(MINDPLDIST, 185);
    EXPECT_EQ(LDP_M, 8);
    EXPECT_EQ(WEIGHT_WRLENG, 1.4F);
}

TEST(ParseParameters, EveryArgumentIsEchoedWithASpaceBehindIt)
{
    EXPECT_EQ(Options({"-M", "3", "-inlib", "a b", "-algo", ""}).report,
              "STAT | Parameters: -M 3 -inlib a b -algo  \n");
}

TEST(ParseParameters, EveryOptionSetsItsOwn)
{
    const Options o({"-inlib", "dir/name", "-cellPath", "lib/", "-mindp", "100", "-algo", "3", "-siteW",
                     "200", "-M", "5", "-W", "3"});
    EXPECT_TRUE(o.good);
    EXPECT_EQ(o.design.placePath, "dir/name");
    EXPECT_EQ(o.design.designName, "name");
    EXPECT_EQ(o.design.cellPath, "lib/");
    EXPECT_EQ(MINDPLDIST, 100);
    EXPECT_EQ(o.design.algo, 3);
    EXPECT_EQ(SITE_WIDTH, 200);
    EXPECT_EQ(LDP_M, 5);
    EXPECT_EQ(WEIGHT_WRLENG, 3.0F);
    EXPECT_EQ(SITE_HEIGHT, 1900) << "there is no option for it";
    EXPECT_EQ(LDP_K, 0) << "there is no option for it";
}

TEST(ParseParameters, WeightIsOnePointFourWithoutItsOption)
{
    const Options o({"-M", "5"});
    EXPECT_EQ(WEIGHT_WRLENG, 1.4F);
}

TEST(ParseParameters, OptionsMayComeInAnyOrderAndTheLastWins)
{
    const Options o({"-M", "5", "-algo", "1", "-M", "6", "-inlib", "a", "-algo", "2", "-inlib", "b/c"});
    EXPECT_TRUE(o.good);
    EXPECT_EQ(LDP_M, 6);
    EXPECT_EQ(o.design.algo, 2);
    EXPECT_EQ(o.design.placePath, "b/c");
    EXPECT_EQ(o.design.designName, "c");
}

TEST(ParseParameters, ValueMayLookLikeAnOption)
{
    const Options o({"-inlib", "-M", "-cellPath", "-algo"});
    EXPECT_TRUE(o.good);
    EXPECT_EQ(o.design.placePath, "-M");
    EXPECT_EQ(o.design.cellPath, "-algo");
    EXPECT_EQ(LDP_M, 8);
}

struct PathCase {
    const char* name;
    const char* value;
    const char* placePath;
    const char* designName;
};

void PrintTo(const PathCase& row, std::ostream* out)
{
    *out << row.value;
}

class PlacePath : public testing::TestWithParam<PathCase> {};

TEST_P(PlacePath, LosesOneDotAndNamesTheDesign)
{
    const Options o({"-inlib", GetParam().value});
    EXPECT_TRUE(o.good);
    EXPECT_EQ(o.design.placePath, GetParam().placePath);
    EXPECT_EQ(o.design.designName, GetParam().designName);
}

const PathCase PATH_CASES[] = {
    {"Plain", "alu", "alu", "alu"},
    {"InAFolder", "work/alu", "work/alu", "alu"},
    {"WithTrailingDot", "work/alu.", "work/alu", "alu"},
    {"OnlyOneDotGoes", "work/alu..", "work/alu.", "alu."},
    {"DotInsideStays", "v1.2/alu.x", "v1.2/alu.x", "alu.x"},
    {"Absolute", "/alu", "/alu", "alu"},
    {"FolderOnly", "work/", "work/", ""},
    {"DotOnly", ".", "", ""},
    {"EmptyStaysEmpty", "", "", ""},
};

INSTANTIATE_TEST_SUITE_P(ParseParameters, PlacePath, testing::ValuesIn(PATH_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

struct NumberCase {
    const char* name;
    const char* value;
    int32_t want;
};

void PrintTo(const NumberCase& row, std::ostream* out)
{
    *out << row.value;
}

class IntegerOption : public testing::TestWithParam<NumberCase> {};

TEST_P(IntegerOption, IsTheLongestDecimalPrefixCutTo32Bits)
{
    const std::string value = GetParam().value;
    const Options o({"-mindp", value, "-algo", value, "-siteW", value, "-M", value});
    EXPECT_TRUE(o.good);
    EXPECT_EQ(MINDPLDIST, GetParam().want);
    EXPECT_EQ(o.design.algo, GetParam().want);
    EXPECT_EQ(SITE_WIDTH, GetParam().want);
    EXPECT_EQ(LDP_M, GetParam().want);
}

const NumberCase NUMBER_CASES[] = {
    {"Plain", "12", 12},
    {"TextBehind", "12abc", 12},
    {"Text", "abc", 0},
    {"Empty", "", 0},
    {"Negative", "-1", -1},
    {"Plus", "+7", 7},
    {"SpaceBefore", " 7", 7},
    {"LeadingZerosAreDecimal", "010", 10},
    {"HexadecimalIsZero", "0x10", 0},
    {"FractionIsCutOff", "3.9", 3},
    {"LargestThatFits", "2147483647", 2147483647},
    {"OneMoreWrapsAround", "2147483648", std::numeric_limits<int32_t>::min()},
    {"UpperBitsAreCutOff", "4294967301", 5},
};

INSTANTIATE_TEST_SUITE_P(ParseParameters, IntegerOption, testing::ValuesIn(NUMBER_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

struct WeightCase {
    const char* name;
    const char* value;
    float want;
};

void PrintTo(const WeightCase& row, std::ostream* out)
{
    *out << row.value;
}

class Weight : public testing::TestWithParam<WeightCase> {};

TEST_P(Weight, IsARealNarrowedToSinglePrecision)
{
    const Options o({"-W", GetParam().value});
    EXPECT_TRUE(o.good);
    EXPECT_EQ(WEIGHT_WRLENG, GetParam().want);
}

const WeightCase WEIGHT_CASES[] = {
    {"Integer", "3", 3.0F},           {"Fraction", "1.25", 1.25F}, {"Narrowed", "0.1", 0.1F},
    {"Exponent", "1e1", 10.0F},       {"Negative", "-0.5", -0.5F}, {"TextBehind", "2.5x", 2.5F},
    {"Text", "heavy", 0.0F},          {"Empty", "", 0.0F},         {"Hexadecimal", "0x2", 2.0F},
    {"TooLarge", "1e400", HUGE_VALF},
};

INSTANTIATE_TEST_SUITE_P(ParseParameters, Weight, testing::ValuesIn(WEIGHT_CASES),
                         [](const auto& row) { return std::string(row.param.name); });

class UnknownOption : public testing::TestWithParam<std::string> {};

TEST_P(UnknownOption, GetsAnErrorLine)
{
    const std::string& word = GetParam();
    const Options o({word, "1"});
    EXPECT_FALSE(o.good);
    EXPECT_EQ(o.report, "STAT | Parameters: " + word + " 1 \nERROR| can NOT parse: " + word + "\n");
}

INSTANTIATE_TEST_SUITE_P(ParseParameters, UnknownOption,
                         testing::Values("-x", "-M8", "-inlibx", "-inli", "-m", "-Algo", "algo", "--algo",
                                         "-w", "-sitew", " -M", "-M ", ""));

TEST(ParseParameters, PairsBeforeAnUnknownOptionTakeEffectAndThoseAfterItDoNot)
{
    const Options o({"-M", "3", "-x", "1", "-algo", "4"});
    EXPECT_FALSE(o.good);
    EXPECT_EQ(o.report, "STAT | Parameters: -M 3 -x 1 -algo 4 \nERROR| can NOT parse: -x\n");
    EXPECT_EQ(LDP_M, 3);
    EXPECT_EQ(o.design.algo, 0);
}

TEST(ParseParameters, OptionWithoutAValueIsRejectedAfterThePairsBeforeIt)
{
    const Options o({"-M", "3", "-algo"});
    EXPECT_FALSE(o.good);
    EXPECT_EQ(o.report, "STAT | Parameters: -M 3 -algo \nERROR| can NOT parse: -algo\n");
    EXPECT_EQ(LDP_M, 3);
    EXPECT_EQ(o.design.algo, 0);
}

TEST(ParseParameters, SingleWordIsRejected)
{
    EXPECT_EQ(Options({"-inlib"}).report, "STAT | Parameters: -inlib \nERROR| can NOT parse: -inlib\n");
    EXPECT_EQ(Options({"-x"}).report, "STAT | Parameters: -x \nERROR| can NOT parse: -x\n");
}

TEST(ParseParameters, OfTwoFaultsTheFirstIsReported)
{
    EXPECT_EQ(Options({"-x", "1", "-M"}).report, "STAT | Parameters: -x 1 -M \nERROR| can NOT parse: -x\n");
}

TEST(CleanPlacePath, RemovesOneTrailingDot)
{
    Design design;
    const auto cleaned = [&](const char* path) {
        design.placePath = path;
        design.cleanPlacePath();
        return design.placePath;
    };
    EXPECT_EQ(cleaned("work/alu."), "work/alu");
    EXPECT_EQ(cleaned("work/alu.."), "work/alu.");
    EXPECT_EQ(cleaned("work/alu"), "work/alu");
    EXPECT_EQ(cleaned(".alu"), ".alu");
    EXPECT_EQ(cleaned("."), "");
    EXPECT_EQ(cleaned(""), "");
}

TEST(CleanPlacePath, LeavesTheDesignName)
{
    Design design;
    design.placePath = "a.";
    design.designName = "b.";
    design.cleanPlacePath();
    EXPECT_EQ(design.designName, "b.");
}

} // namespace
