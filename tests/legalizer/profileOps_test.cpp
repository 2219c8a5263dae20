// SPDX-License-Identifier: BSD-3-Clause
// The operations on profiles: every instruction set against plain loops.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "legalizer/everyProfileOps.h"
#include "legalizer/profileOps.h"
#include "legalizer/randomDesign.h"
#include "qlib/exact.h"
#include "support/extremes.h"
#include "support/property.h"

namespace {

using test::INF;
using test::LARGEST;
using test::Random;
using test::SMALLEST;
using vireloce::ProfileOps;
using vireloce::profileOpsHere;
using vireloce::profileSpace;
using vireloce::ProfileTerm;
using vireloce::UNREACHABLE;

using Profile = std::vector<int32_t>;

constexpr int32_t MOST_ENTRIES = 70;
constexpr int32_t MARK = -77777777;

/// relax(), one entry after the other.
Profile plainRelax(const std::vector<ProfileTerm>& terms, const int32_t* costs, int32_t count)
{
    Profile out;
    int32_t before = UNREACHABLE;
    for (int32_t k = 0; k < count; ++k) {
        int32_t way = terms[0].profile[k] + terms[0].cost;
        for (const ProfileTerm& term : terms) {
            way = std::min(way, term.profile[k] + term.cost);
        }
        before = std::min(before, way + costs[k]);
        out.push_back(before);
    }
    return out;
}

/// A cost of a profile: small, negative, or not to be reached.
int32_t anyValue(Random& random)
{
    switch (random.pick(0, 5)) {
    case 0:
        return UNREACHABLE;
    case 1:
        return UNREACHABLE - random.pick(0, 2);
    case 2:
        return -random.pick(1, 1 << 28);
    case 3:
        return random.pick(0, 1 << 29);
    default:
        return random.pick(0, 5);
    }
}

Profile anyProfile(Random& random, int32_t size)
{
    Profile profile(static_cast<size_t>(size));
    std::generate(profile.begin(), profile.end(), [&random] { return anyValue(random); });
    return profile;
}

class EveryProfileOps : public test::OpsTest {};

TEST_P(EveryProfileOps, AddsAProfileAndWritesExactlyItsEntries)
{
    Random random(1);
    for (int32_t count = 0; count <= MOST_ENTRIES; ++count) {
        for (int32_t start = 0; start < 4; ++start) { // not aligned
            Profile profile = anyProfile(random, MOST_ENTRIES + 40);
            Profile added(static_cast<size_t>(start + count)); // no entry more than are to be read
            std::generate(added.begin(), added.end(), [&random] { return random.pick(-9, 1 << 20); });
            Profile want = profile;
            for (int32_t k = 0; k < count; ++k) {
                want[static_cast<size_t>(start + k)] += added[static_cast<size_t>(start + k)];
            }
            GetParam()->add(profile.data() + start, added.data() + start, count);
            ASSERT_EQ(profile, want) << "count " << count << " start " << start;
        }
    }
}

TEST_P(EveryProfileOps, RelaxesAsAPlainLoopDoesForAllCountsTermsAndStarts)
{
    Random random(2);
    for (int32_t count = 1; count <= MOST_ENTRIES; ++count) {
        for (int32_t numTerms = 1; numTerms <= 6; ++numTerms) {
            const int32_t space = profileSpace(count);
            std::vector<Profile> profiles;
            std::vector<ProfileTerm> terms;
            for (int32_t t = 0; t < numTerms; ++t) { // starts that are not aligned, no entry behind the space
                const int32_t start = random.pick(0, 16);
                profiles.push_back(anyProfile(random, start + space));
                terms.push_back({profiles.back().data() + start, random.pick(-3, 1 << 20)});
            }
            Profile costs(static_cast<size_t>(space));
            std::generate(costs.begin(), costs.end(), [&random] { return random.pick(0, 4); });
            Profile out(static_cast<size_t>(space + 2), MARK);
            GetParam()->relax(out.data() + 1, terms.data(), numTerms, costs.data(), count);
            ASSERT_EQ(Profile(out.begin() + 1, out.begin() + 1 + count),
                      plainRelax(terms, costs.data(), count))
                << "count " << count << " terms " << numTerms;
            ASSERT_EQ(out.front(), MARK) << "wrote before the profile";
            ASSERT_EQ(out.back(), MARK) << "wrote behind the profile's space";
        }
    }
}

TEST_P(EveryProfileOps, NeverRelaxesToMoreThanUnreachable)
{
    const Profile costs(static_cast<size_t>(profileSpace(MOST_ENTRIES)), 1 << 24);
    const Profile profile(costs.size(), UNREACHABLE);
    for (int32_t count = 1; count <= MOST_ENTRIES; ++count) {
        const ProfileTerm term{profile.data(), 1 << 24};
        Profile out(costs.size(), MARK);
        GetParam()->relax(out.data(), &term, 1, costs.data(), count);
        ASSERT_EQ(Profile(out.begin(), out.begin() + count),
                  Profile(static_cast<size_t>(count), UNREACHABLE));
    }
}

TEST_P(EveryProfileOps, CarryTheLeastOfAnEntryToAllBehindItAndToNoneBefore)
{
    for (int32_t at = 0; at < MOST_ENTRIES; ++at) {
        Profile profile(static_cast<size_t>(profileSpace(MOST_ENTRIES)), 50);
        profile[static_cast<size_t>(at)] = 7;
        const Profile costs(profile.size(), 0);
        const ProfileTerm term{profile.data(), 0};
        Profile out(profile.size(), MARK);
        GetParam()->relax(out.data(), &term, 1, costs.data(), MOST_ENTRIES);
        for (int32_t k = 0; k < MOST_ENTRIES; ++k) {
            ASSERT_EQ(out[static_cast<size_t>(k)], k < at ? 50 : 7) << "entry " << k << " least at " << at;
        }
    }
}

TEST_P(EveryProfileOps, AddsDistancesAsSumsThatAreTruncatedOneByOne)
{
    Random random(3);
    for (const float weight :
         {0.0F, 0.65F, 0.999999F, 1.05F, 1.3F, 2.1F, 12345.67F, -1.4F, 3e38F, INF, -INF, std::nanf("")}) {
        for (const int32_t step : {1, -1}) {
            for (const int32_t distance : {-100, -20, -1, 0, 1, 5, 64, 1 << 24, LARGEST - 30, SMALLEST}) {
                const int32_t count = random.pick(1, MOST_ENTRIES);
                Profile profile = anyProfile(random, profileSpace(count) + 2);
                profile[1] = random.oneOf<int>({LARGEST, SMALLEST, 0});
                profile.front() = profile.back() = MARK;
                Profile want = profile;
                for (int32_t k = 0; k < count; ++k) {
                    const int32_t sites = distance + k * step; // modulo 2^32
                    int32_t& cost = want[static_cast<size_t>(k) + 1];
                    cost = vireloce::addTruncated(cost, std::max(sites, 0), weight);
                }
                GetParam()->addDistances(profile.data() + 1, distance, step, weight, count);
                ASSERT_TRUE(std::equal(want.begin(), want.begin() + 1 + count, profile.begin()))
                    << "weight " << weight << " step " << step << " distance " << distance;
                ASSERT_EQ(profile.back(), MARK) << "wrote behind the profile's space";
            }
        }
    }
}

TEST_P(EveryProfileOps, TakesTheLeastOfSomeProfilesAndWhatEachPays)
{
    Random random(4);
    for (int32_t count = 1; count <= MOST_ENTRIES; ++count) {
        for (int32_t numTerms = 1; numTerms <= 6; ++numTerms) {
            const int32_t space = profileSpace(count);
            std::vector<Profile> profiles;
            std::vector<ProfileTerm> terms;
            for (int32_t t = 0; t < numTerms; ++t) {
                const int32_t start = random.pick(0, 16);
                profiles.push_back(anyProfile(random, start + space));
                terms.push_back({profiles.back().data() + start, random.pick(-3, 1 << 20)});
            }
            Profile out(static_cast<size_t>(space + 2), MARK);
            GetParam()->least(out.data() + 1, terms.data(), numTerms, count);
            for (int32_t k = 0; k < count; ++k) {
                int32_t want = terms[0].profile[k] + terms[0].cost;
                for (const ProfileTerm& term : terms) {
                    want = std::min(want, term.profile[k] + term.cost);
                }
                ASSERT_EQ(out[static_cast<size_t>(k) + 1], want) << "count " << count << " entry " << k;
            }
            ASSERT_EQ(out.front(), MARK);
            ASSERT_EQ(out.back(), MARK) << "wrote behind the profile's space";
        }
    }
}

TEST_P(EveryProfileOps, TakesSumsModulo32BitsWhereTheyAreLessAndWritesExactlyItsEntries)
{
    Random random(5);
    const auto anyNumber = [&random] { return random.oneOf<int>({LARGEST, SMALLEST, 0, -5, 7, 1 << 30, 9}); };
    for (int32_t count = 0; count <= MOST_ENTRIES; ++count) {
        for (int32_t start = 0; start < 4; ++start) { // not aligned
            Profile out(static_cast<size_t>(MOST_ENTRIES) + 40);
            Profile from(static_cast<size_t>(start + count)); // no entry more than are to be read
            Profile costs(from.size());
            std::generate(out.begin(), out.end(), anyNumber);
            std::generate(from.begin(), from.end(), anyNumber);
            std::generate(costs.begin(), costs.end(), anyNumber);
            Profile want = out;
            for (size_t k = static_cast<size_t>(start); k < from.size(); ++k) {
                want[k] = std::min(want[k], from[k] + costs[k]);
            }
            GetParam()->leastSums(out.data() + start, from.data() + start, costs.data() + start, count);
            ASSERT_EQ(out, want) << "count " << count << " start " << start;
        }
    }
}

TEST_P(EveryProfileOps, TakesTheLeastOfEveryEntryAndThoseBeforeIt)
{
    Random random(6);
    for (int32_t count = 1; count <= MOST_ENTRIES; ++count) {
        Profile profile = anyProfile(random, profileSpace(count) + 1);
        profile.back() = MARK;
        Profile want = profile;
        for (size_t k = 1; k < static_cast<size_t>(count); ++k) {
            want[k] = std::min(want[k], want[k - 1]);
        }
        GetParam()->runningLeast(profile.data(), count);
        ASSERT_TRUE(std::equal(want.begin(), want.begin() + count, profile.begin())) << "count " << count;
        ASSERT_EQ(profile.back(), MARK) << "wrote behind the profile's space";
    }
}

PROPERTY(ProfileOps, AllSetsGiveTheSameToTheBit)
{
    const auto count = test::draw(1, 200);
    const auto numTerms = test::draw(1, 9);
    Random random(static_cast<uint32_t>(test::drawInt()));
    std::vector<Profile> profiles;
    std::vector<ProfileTerm> terms;
    for (int32_t t = 0; t < numTerms; ++t) {
        profiles.push_back(anyProfile(random, profileSpace(count)));
        terms.push_back({profiles.back().data(), random.pick(-5, 5)});
    }
    Profile costs(static_cast<size_t>(profileSpace(count)));
    std::generate(costs.begin(), costs.end(), [&random] { return random.pick(-2, 2); });
    const Profile want = plainRelax(terms, costs.data(), count);
    for (const ProfileOps* ops : profileOpsHere()) {
        Profile out(costs.size());
        ops->relax(out.data(), terms.data(), numTerms, costs.data(), count);
        out.resize(static_cast<size_t>(count));
        RC_ASSERT(out == want);
    }
}

INSTANTIATE_TEST_SUITE_P(ProfileOps, EveryProfileOps, test::everyOps(), test::nameOfOps);

TEST(ProfileOpsHere, BeginsWithASetThatRunsEverywhereAndNamesEachOnce)
{
    const auto all = profileOpsHere();
    ASSERT_FALSE(all.empty());
    for (size_t i = 0; i < all.size(); ++i) {
        for (size_t j = 0; j < i; ++j) {
            EXPECT_STRNE(all[i]->name, all[j]->name);
        }
    }
}

TEST(ProfileOpsHere, HoldsTheBestSetAsItsLast)
{
    EXPECT_EQ(&vireloce::bestProfileOps(), profileOpsHere().back());
}

TEST(ProfileSpace, IsTheNextMultipleOfABlock)
{
    for (int32_t count = 0; count <= 100; ++count) {
        EXPECT_EQ(profileSpace(count) % vireloce::PROFILE_BLOCK, 0);
        EXPECT_GE(profileSpace(count), count);
        EXPECT_LT(profileSpace(count), count + vireloce::PROFILE_BLOCK);
    }
}

} // namespace
