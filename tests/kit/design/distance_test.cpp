// SPDX-License-Identifier: BSD-3-Clause
#include "kit/design/distance.h"

#include <gtest/gtest.h>

#include "kit/base/fault.h"
#include "kit/kitRun.h"
#include "support/property.h"

namespace {

using kit::design::Distance;

constexpr kit::lefdef::Length SITE_OF_190 = 190'000; ///< picometres
constexpr kit::lefdef::Length SITE_OF_460 = 460'000;

/// What a text means on sites of a width, -1 if it is no distance.
int32_t unitsOf(const char* text, kit::lefdef::Length site)
{
    const std::optional<Distance> distance = Distance::parse(text);
    return distance ? distance->unitsOn(site) : -1;
}

TEST(KitDistance, IsANumberOfLibraryUnitsOrALength)
{
    struct Row {
        const char* text;
        int32_t on190;
        int32_t on460;
    };
    const Row rows[] = {
        {"185", 185, 185},    {"0", 0, 0},         {"10000", 10'000, 10'000}, {"185nm", 185, 77},
        {"0.185um", 185, 77}, {"92.5nm", 93, 39},  {"0.0925um", 93, 39},      {"0.1um", 100, 42},
        {"0nm", 0, 0},        {"0.19um", 190, 79}, {"0.46um", 460, 190},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(unitsOf(row.text, SITE_OF_190), row.on190) << row.text;
        EXPECT_EQ(unitsOf(row.text, SITE_OF_460), row.on460) << row.text;
    }
}

TEST(KitDistance, OtherTextsAreRefused)
{
    for (const char* text :
         {"", "-1", "10001", "1.5", "1e3", "um", "185 um", "185mm", "-5nm", "1001um", "nan", "um5"}) {
        EXPECT_EQ(unitsOf(text, SITE_OF_190), -1) << text;
    }
}

TEST(KitDistance, LengthNeedsTheSite)
{
    EXPECT_THROW(unitsOf("92.5nm", 0), kit::Fault);
    EXPECT_EQ(unitsOf("92", 0), 92);
}

TEST(KitDistance, LengthBeyondTheMostOnItsSitesIsRefused)
{
    EXPECT_EQ(unitsOf("10um", SITE_OF_190), 10'000);
    EXPECT_THROW(unitsOf("10.000001um", SITE_OF_190), kit::Fault);
}

TEST(KitDistance, PeopleReadLibraryUnitsAndMicrometres)
{
    EXPECT_EQ(Distance(185).textOn(SITE_OF_190), "185 (0.185 um)");
    EXPECT_EQ(Distance::parse("92.5nm")->textOn(SITE_OF_190), "93 (0.093 um)");
    EXPECT_EQ(Distance(190).textOn(SITE_OF_460), "190 (0.46 um)");
    EXPECT_EQ(Distance(185).textOn(0), "185");
    EXPECT_DOUBLE_EQ(Distance(190).micronsOn(SITE_OF_460), 0.46);
}

PROPERTY(KitDistance, NeverIsLessThanTheLength)
{
    const auto length = test::draw<int64_t>(0, 1'000'000);
    const auto site = test::draw<int64_t>(50'000, 1'000'000);
    const std::optional<Distance> distance = Distance::parse(std::to_string(length) + "e-3nm");
    RC_ASSERT(distance.has_value());
    const int64_t units = distance->unitsOn(site);
    RC_ASSERT(units * site >= length * 190);
    RC_ASSERT((units - 1) * site < length * 190);
    RC_ASSERT(Distance::parse(distance->given())->unitsOn(site) == units);
}

/// The status of a subcommand and what it prints, without its times.
std::string said(test::Words words, const char* distance)
{
    words.insert(words.end(), {"--mindp", distance});
    const test::KitOutcome outcome = test::runKit(words);
    std::string text = std::to_string(outcome.status) + outcome.output + outcome.error;
    for (size_t at = text.find("CPU time"); at != std::string::npos; at = text.find("CPU time", at)) {
        text.erase(at, text.find('\n', at) - at);
    }
    return text;
}

TEST(KitDistance, MeansTheSameToEverySubcommand)
{
    const test::GeneratedDesign design({"--site-step", "760"}); // 0.38 um
    const std::string out = design.path("out");
    const test::Words place{"place", design.base(), "--cell-path", design.lib(),
                            "-o",    out,           "--quiet",     "--force"};
    EXPECT_EQ(said(place, "0.1um"), said(place, "50"));
    const test::Words subcommands[] = {
        {"lint", design.base(), "--cell-path", design.lib()},
        {"verify", out + ".place", "--colors", out + ".colors", "--cell-path", design.lib()},
        {"verify", out + ".place", "--colors", out + ".colors", "--cell-path", design.lib(), "--json"},
        {"view", out + ".place", "--colors", out + ".colors", "--cell-path", design.lib(), "-o",
         design.path("p.html"), "--force"}};
    for (const test::Words& words : subcommands) {
        const std::string text = said(words, "100nm");
        EXPECT_EQ(text, said(words, "50")) << words[0];
        EXPECT_EQ(text.find("--mindp"), std::string::npos) << text;
    }
    EXPECT_NE(said(subcommands[1], "200nm").find("100 (0.2 um)"), std::string::npos);
    EXPECT_NE(test::contentOf(design.path("p.html")).find("50 (0.1 um)"), std::string::npos);
    EXPECT_NE(test::contentOf(out + ".json").find("\"mindp_um\": 0.1"), std::string::npos);
}

TEST(KitDistance, DesignWithoutUnitsIsToldToUseLibraryUnits)
{
    const test::GeneratedDesign design;
    std::string text = test::contentOf(design.base() + ".place");
    const size_t units = text.find("UNITS");
    ASSERT_NE(units, std::string::npos);
    text.erase(units, text.find('\n', units) + 1 - units);
    std::ofstream(design.base() + ".place") << text;
    const test::Words words{"place", design.base(), "--cell-path", design.lib(), "-o", design.path("out")};
    EXPECT_EQ(
        said(words, "0.1um"),
        "2vireloce-kit: --mindp 0.1um needs the width of a site, and the placement has no row or no UNITS; "
        "give it in library units, 190 to the site\n");
}

} // namespace
