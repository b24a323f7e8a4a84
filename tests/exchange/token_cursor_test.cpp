#include "exchange/token_cursor.h"

#include "exchange/padded.h"

#include <gmock/gmock.h>

#include <string>
#include <utility>
#include <vector>

namespace tarnwick::test {
namespace {

using testing::ElementsAre;
using testing::Pair;

std::vector<std::pair<TokenKind, std::string>> TokensOf(std::string_view text) {
    const Padded padded(text);
    TokenCursor cursor(padded.Text());
    std::vector<std::pair<TokenKind, std::string>> tokens;
    for (Token token = cursor.Next(); token.kind != TokenKind::kEnd; token = cursor.Next()) {
        tokens.emplace_back(token.kind, token.text);
    }
    return tokens;
}

TEST(TokenCursor, TellsEveryKindOfToken) {
    EXPECT_THAT(TokensOf("#1=A_1(-2,+3.E-4,'it''s',.T.,\"0F\",$,*,@5,<a.stp#b>);/* c */!USER"),
                ElementsAre(Pair(TokenKind::kReference, "#1"), Pair(TokenKind::kEquals, "="),
                            Pair(TokenKind::kKeyword, "A_1"), Pair(TokenKind::kOpen, "("),
                            Pair(TokenKind::kInteger, "-2"), Pair(TokenKind::kComma, ","),
                            Pair(TokenKind::kReal, "+3.E-4"), Pair(TokenKind::kComma, ","),
                            Pair(TokenKind::kString, "'it''s'"), Pair(TokenKind::kComma, ","),
                            Pair(TokenKind::kEnumeration, ".T."), Pair(TokenKind::kComma, ","),
                            Pair(TokenKind::kBinary, "\"0F\""), Pair(TokenKind::kComma, ","),
                            Pair(TokenKind::kOmitted, "$"), Pair(TokenKind::kComma, ","),
                            Pair(TokenKind::kDerived, "*"), Pair(TokenKind::kComma, ","),
                            Pair(TokenKind::kValue, "@5"), Pair(TokenKind::kComma, ","),
                            Pair(TokenKind::kResource, "<a.stp#b>"), Pair(TokenKind::kClose, ")"),
                            Pair(TokenKind::kSemicolon, ";"), Pair(TokenKind::kKeyword, "!USER")));
}

TEST(TokenCursor, TakesTheRealsOfAllExporters) {
    for (const std::string text : {"1.", "-.5", ".5E3", "1E5", "1.5e-3", "1.5D+03", "2d1"}) {
        EXPECT_THAT(TokensOf(text + ",$"),
                    ElementsAre(Pair(TokenKind::kReal, text), Pair(TokenKind::kComma, ","),
                                Pair(TokenKind::kOmitted, "$")));
    }
}

TEST(TokenCursor, WhatIsNoTokenIsBad) {
    for (const std::string_view text :
         {"'open", "\"open", "<open", "#", "@x", "-", ".T", "?", "1.E", "-.", "1D"}) {
        EXPECT_EQ(TokensOf(text).front().first, TokenKind::kBad) << text;
    }
}

} // namespace
} // namespace tarnwick::test
