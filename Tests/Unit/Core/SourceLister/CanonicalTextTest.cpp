#include "Core/SourceLister/CanonicalText.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

TEST(CanonicalText, EquivalentTextsAreTheSame) {
    EXPECT_EQ(canonicallyComposed("Cafe\u0301"), "Caf\u00E9");
    EXPECT_EQ(canonicallyComposed("Caf\u00E9"), "Caf\u00E9");
    EXPECT_EQ(canonicallyComposed("\u30AB\u3099"), "\u30AC") << "a kana and its voicing mark";
    EXPECT_EQ(canonicallyComposed("\u212B"), "\u00C5") << "the angstrom sign";
}

TEST(CanonicalText, WhatOnlyLooksAlikeStaysApart) {
    EXPECT_EQ(canonicallyComposed("\uFF21"), "\uFF21") << "a full-width A";
    EXPECT_EQ(canonicallyComposed("A"), "A");
    EXPECT_EQ(canonicallyComposed(""), "");
}

TEST(CanonicalText, WhatIsNotUtf8StaysAsItIs) {
    EXPECT_EQ(canonicallyComposed("a\xFF"
                                  "e\u0301"),
              "a\xFF"
              "\u00E9");
}

} // namespace
} // namespace kestrove
