// SPDX-License-Identifier: BSD-3-Clause
// The parts that both readers are made of.
#include <map>

#include "kit/base/fault.h"
#include "kit/formats/lefdef/described.h"
#include "kit/formats/lefdef/nameTable.h"
#include "kit/formats/lefdef/orient.h"
#include "kit/formats/lefdef/scanner.h"
#include "kit/formats/lefdef/source.h"
#include "support/guards.h"
#include "support/property.h"

namespace {

using namespace kit::lefdef;

TEST(Orient, NamesAndMeanings)
{
    struct Row {
        const char* name;
        Orient orient;
        bool mirrored;
        bool upsideDown;
        bool onItsSide;
    };
    const Row rows[] = {
        {"N", Orient::N, false, false, false},  {"FN", Orient::FN, true, false, false},
        {"FS", Orient::FS, false, true, false}, {"S", Orient::S, true, true, false},
        {"W", Orient::W, false, false, true},   {"E", Orient::E, false, false, true},
        {"FW", Orient::FW, false, false, true}, {"FE", Orient::FE, false, false, true},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(nameOf(row.orient), row.name);
        EXPECT_EQ(orientOf(row.name), row.orient);
        EXPECT_EQ(isMirrored(row.orient), row.mirrored);
        EXPECT_EQ(isUpsideDown(row.orient), row.upsideDown);
        EXPECT_EQ(isOnItsSide(row.orient), row.onItsSide);
        if (!row.onItsSide) {
            EXPECT_EQ(upright(row.mirrored, row.upsideDown), row.orient);
        }
    }
    for (const char* const name : {"", "n", "R0", "NN", "F"}) {
        EXPECT_FALSE(orientOf(name)) << name;
    }
}

std::vector<std::string> tokensOf(const std::string& text)
{
    std::vector<std::string> tokens;
    for (Scanner scanner(text); scanner.token().kind != Token::Kind::END; scanner.advance()) {
        const bool isString = scanner.token().kind == Token::Kind::STRING;
        tokens.push_back((isString ? "s:" : "w:") + std::string(scanner.token().text));
        // A token stands where it says.
        EXPECT_EQ(text.substr(scanner.offset() + (isString ? 1 : 0), scanner.token().text.size()),
                  scanner.token().text);
        EXPECT_EQ(scanner.end(), scanner.offset() + scanner.token().text.size() + (isString ? 2 : 0));
    }
    return tokens;
}

TEST(Scanner, Tokens)
{
    struct Row {
        std::string text;
        std::vector<std::string> tokens;
    };
    const Row rows[] = {
        {"", {}},
        {" \t\r\n\v\f", {}},
        {"a", {"w:a"}},
        {"a;b ;c; ;", {"w:a;b", "w:;c;", "w:;"}},
        {"( 1 -2 ) +x - (a)", {"w:(", "w:1", "w:-2", "w:)", "w:+x", "w:-", "w:(a)"}},
        {"# a b\nc#d #\n#\n#e", {"w:c#d"}},
        {"\"a b\" \"\" \"x;#\n\\\"y\\\\\"z", {"s:a b", "s:", "s:x;#\n\\\"y\\\\", "w:z"}},
        {"a\"b c\"", {"w:a\"b", "w:c\""}},
        {"\"a b", {"w:\"a", "w:b"}},
        {"\"a\\\" b", {"w:\"a\\\"", "w:b"}},
        {"\"\\", {"w:\"\\"}},
        {std::string("a\0b \0", 5), {std::string("w:a\0b", 5), std::string("w:\0", 3)}},
        {"\xff\x80 \xC3\xA4", {"w:\xff\x80", "w:\xC3\xA4"}},
    };
    for (const Row& row : rows) {
        EXPECT_EQ(tokensOf(row.text), row.tokens) << row.text;
    }
}

/// Whether a line or a statement begins at a byte.
bool lineOrStatementBegins(const std::string& text, size_t offset)
{
    const std::string before = text.substr(0, offset);
    const size_t last = before.find_last_not_of(' ');
    return last == std::string::npos || before[last] == '\n' || before[last] == ';';
}

/// skipToSign() a token at a time.
void skipLiterally(Scanner& scanner, const std::string& all)
{
    const auto isAll = [](std::string_view text, std::string_view of) {
        return text.find_first_not_of(of) == std::string_view::npos;
    };
    for (; scanner.token().kind != Token::Kind::END; scanner.advance()) {
        const std::string_view text = scanner.token().text;
        if (scanner.token().kind == Token::Kind::STRING) {
            continue;
        }
        const bool begins = lineOrStatementBegins(all, scanner.offset());
        if (text == ";" || text == "+" || text == "-" || text == "END" || (text == "End" && begins)) {
            return;
        }
        const std::string_view before = text.substr(0, text.size() - 1);
        if (text.back() == ';' && (before == ")" || isAll(before, "0123456789-.") ||
                                   isAll(before, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz"))) {
            scanner.cut(text.size() - 1);
            return;
        }
    }
}

PROPERTY(Scanner, SkipsToTheNextSign)
{
    static const std::vector<std::string> s_parts{";", "+",  "-",  "END", "End", "E",  "ENDX",
                                                  "a", "1",  "-2", ")",   "NEW", "\"", "\\",
                                                  "#", "\n", " ",  "  ",  " ",   "x;", ";x"};
    std::string text;
    for (int32_t i = test::draw(0, 40); i > 0; --i) {
        text += s_parts[test::drawIndex(s_parts.size())];
    }
    Scanner fast(text);
    Scanner slow(text);
    while (slow.token().kind != Token::Kind::END) {
        fast.skipToSign();
        skipLiterally(slow, text);
        RC_ASSERT(fast.token().kind == slow.token().kind);
        RC_ASSERT(fast.token().text == slow.token().text);
        RC_ASSERT(fast.offset() == slow.offset());
        RC_ASSERT(fast.end() == slow.end());
        for (int32_t i = test::draw(1, 3); i > 0; --i) {
            fast.advance();
            slow.advance();
        }
    }
}

TEST(Source, PlacesCountLinesAndColumns)
{
    std::string text = "a\nbc\r\n\n";
    text += std::string(10'000, 'x') + "\n" + std::string(5000, '\n') + "end";
    const Source source("f", text);
    kit::Place place{1, 1};
    for (size_t i = 0; i <= text.size(); ++i) {
        ASSERT_EQ(source.placeOf(i).line, place.line) << i;
        ASSERT_EQ(source.placeOf(i).column, place.column) << i;
        if (i < text.size()) {
            place =
                text[i] == '\n' ? kit::Place{place.line + 1, 1} : kit::Place{place.line, place.column + 1};
        }
    }
    EXPECT_EQ(source.placeOf(text.size() + 100).column, 4);
}

TEST(Source, PlacesAtTheEndOfAWholeBlock)
{
    EXPECT_EQ(Source("f", "").placeOf(0).line, 1);
    EXPECT_EQ(Source("f", std::string(4096, '\n')).placeOf(4096).line, 4097);
    EXPECT_EQ(Source("f", std::string(4096, 'x')).placeOf(4096).column, 4097);
}

TEST(Source, ReadsAFile)
{
    const test::TempDir dir;
    const Source source(dir.write("a.def", "x\ny"));
    EXPECT_EQ(source.text(), "x\ny");
    EXPECT_EQ(source.offsetOf(source.text().substr(2)), 2U);
    EXPECT_THROW(Source(dir.path("none")), kit::Fault);
}

TEST(SourceReporter, StopsAfterAThousandOfASeverity)
{
    const Source source("f", "text");
    kit::Findings findings;
    SourceReporter reporter(findings, source);
    for (int i = 0; i < 1500; ++i) {
        reporter.error("e", 1, "what", "advice");
    }
    for (int i = 0; i < 1000; ++i) {
        reporter.warning("w", 2, "what", "advice");
    }
    reporter.add(kit::Severity::NOTE, "n", 3, "what", "advice");
    ASSERT_EQ(findings.size(), 2002U);
    EXPECT_EQ(test::describe(findings[999]), "error e 1:2: what; advice");
    EXPECT_EQ(
        test::describe(findings[1000]),
        "error too-many 1:2: from here on no error is told, there were 1000 before; correct those first");
    EXPECT_EQ(test::describe(findings[1001]), "warning w 1:3: what; advice");
    EXPECT_EQ(test::describe(findings[2001]), "note n 1:4: what; advice");
}

PROPERTY(NameTable, FindsTheFirstOfEachName)
{
    std::vector<std::string> names(test::drawCount());
    for (std::string& name : names) {
        name = std::to_string(test::draw(0, 300) * 7919);
    }
    std::map<std::string, uint32_t> model;
    struct Named {
        std::string name;
    };
    std::vector<Named> records;
    NameTable<Named> table(records);
    for (const std::string& name : names) {
        const auto [at, isNew] = model.emplace(name, static_cast<uint32_t>(records.size()));
        RC_ASSERT(table.indexOf(name) == (isNew ? -1 : static_cast<int32_t>(at->second)));
        RC_ASSERT(table.add(name) == at->second);
        if (isNew) {
            records.push_back({name});
        }
        RC_ASSERT(table.indexOf(name) == static_cast<int32_t>(at->second));
    }
    NameTable<Named> again(records);
    again.addAll();
    RC_ASSERT(std::all_of(model.begin(), model.end(), [&](const auto& entry) {
        return again.indexOf(entry.first) == static_cast<int32_t>(entry.second);
    }));
}

} // namespace
