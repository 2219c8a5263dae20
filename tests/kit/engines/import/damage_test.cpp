// SPDX-License-Identifier: BSD-3-Clause
// Damaged LEF and DEF files: import ends with a design or with errors, and never otherwise.
#include <random>

#include "kit/engines/import/importCase.h"

namespace {

using test::KitImport;
using test::Words;

constexpr const char* BODY = R"(DIEAREA ( 0 0 ) ( 9000 9000 ) ;
COMPONENTS 7 ;
- a A + PLACED ( 1000 0 ) N ;
- b B + PLACED ( 1600 0 ) FN ;
- c A + PLACED ( 3000 2000 ) FS ;
- d A + UNPLACED ;
- m RAM + FIXED ( 2600 0 ) N ;
- f FILL + PLACED ( 4000 2000 ) FS ;
- t TAP + COVER ( 1000 2000 ) N ;
END COMPONENTS
PINS 2 ;
- p + NET n + USE SIGNAL + PLACED ( 10 20 ) N ;
- q + NET o + PORT + LAYER metal1 ( 0 0 ) ( 1 1 ) + PLACED ( 30 40 ) N ;
END PINS
BLOCKAGES 1 ;
- PLACEMENT RECT ( 1500 500 ) ( 1500 2500 ) POLYGON ( 4000 0 ) ( 4000 500 ) ( 4400 500 ) ( 4400 0 ) ;
END BLOCKAGES
NETS 2 ;
- n ( PIN p ) ( a Z ) ( m D ) ( d Z ) ;
- o ( PIN q ) ( b Z ) ( c Z ) + ROUTED metal1 ( 0 0 ) ( * 100 ) ;
END NETS
)";

/// Where the words of a text begin and end.
std::vector<std::pair<size_t, size_t>> wordsOf(const std::string& text)
{
    std::vector<std::pair<size_t, size_t>> words;
    for (size_t begin = text.find_first_not_of(" \n"); begin != std::string::npos;) {
        const size_t end = std::min(text.find_first_of(" \n", begin), text.size());
        words.emplace_back(begin, end - begin);
        begin = text.find_first_not_of(" \n", end);
    }
    return words;
}

/// Leaves out, doubles, swaps or replaces a word.
void damage(std::string& text, std::mt19937& random)
{
    static const Words s_bad{"2147483647", "-2147483648", "99999999999", "0",          "-1",  "1e9",  "nan",
                             ";",          "(",           "-",           "END",        "\"",  "W",    "*",
                             "+",          "FILLER_1",    "0.0000001",   "COMPONENTS", "x x", "\x01", "PIN"};
    const auto words = wordsOf(text);
    const auto [begin, size] = words[random() % words.size()];
    const auto [otherBegin, otherSize] = words[random() % words.size()];
    const std::string other = text.substr(otherBegin, otherSize);
    switch (random() % 4) {
    case 0:
        text.erase(begin, size);
        break;
    case 1:
        text.insert(begin, text.substr(begin, size) + " ");
        break;
    case 2:
        text.replace(begin, size, other);
        break;
    default:
        text.replace(begin, size, s_bad[random() % s_bad.size()]);
    }
}

class KitImportDamage : public KitImport, public testing::WithParamInterface<int> {};

TEST_P(KitImportDamage, EndsWithADesignOrWithErrors)
{
    std::mt19937 random(static_cast<uint32_t>(GetParam()));
    int written = 0;
    for (int round = 0; round < 150; ++round) {
        std::string body = BODY;
        std::string rows = test::TWO_ROWS;
        std::string lef = test::SMALL_LEF;
        for (uint32_t times = 1 + random() % 2; times > 0; --times) {
            const uint32_t where = random() % 8;
            damage(where == 0 ? lef : where == 1 ? rows : body, random);
        }
        std::filesystem::remove(base() + ".place");
        const auto outcome = import(body, {"--legalize"}, rows, lef);
        const bool isThere = std::filesystem::exists(base() + ".place");
        ASSERT_EQ(isThere ? 0 : 2, outcome.status) << body << rows << outcome.error;
        ASSERT_EQ(isThere, outcome.error.find(": error: ") == std::string::npos) << outcome.error;
        written += isThere ? 1 : 0;
    }
    EXPECT_GT(written, 0);
    EXPECT_LT(written, 150);
}

INSTANTIATE_TEST_SUITE_P(Seeds, KitImportDamage, testing::Range(0, 6));

} // namespace
