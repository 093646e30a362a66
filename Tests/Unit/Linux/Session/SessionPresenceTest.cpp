#include "Platform/Linux/Session/SessionPresence.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <map>
#include <random>
#include <vector>

namespace kestrove {

namespace {

using Told = std::vector<std::string>;

class SessionPresenceTest : public testing::Test {
protected:
    SessionPresence presence;
    Told told;
    std::array<Subscription, 3> watching{
        presence.wentAway.subscribe([this] { told.emplace_back("away"); }),
        presence.cameBack.subscribe([this] { told.emplace_back("back"); }),
        presence.becameUnclear.subscribe([this] { told.emplace_back("unclear"); })};
};

TEST_F(SessionPresenceTest, BeginsWithTheUserThere) {
    EXPECT_EQ(presence.state(), SessionPresence::State::here);
    presence.isHere("saver");
    presence.isSilent("saver");
    EXPECT_EQ(told, Told());
}

TEST_F(SessionPresenceTest, TwoWitnessesOfOneLockAreToldOnce) {
    presence.isAway("saver");
    presence.isAway("logind");
    presence.isHere("saver");
    EXPECT_EQ(told, Told{"away"});
    presence.isHere("logind");
    EXPECT_EQ(told, (Told{"away", "back"}));
}

TEST_F(SessionPresenceTest, AWitnessThatDiesWhileTheUserIsAwayLeavesItUnclear) {
    presence.isAway("saver");
    presence.isSilent("saver");
    EXPECT_EQ(told, (Told{"away", "unclear"}));
    presence.isHere("seat");
    EXPECT_EQ(told, (Told{"away", "unclear"})) << "it never said anything else";
    presence.isHere("saver");
    EXPECT_EQ(told, (Told{"away", "unclear", "back"}));
}

TEST_F(SessionPresenceTest, AWitnessThatDiesDoesNotUnlockForAnother) {
    presence.isAway("saver");
    presence.isAway("logind");
    presence.isSilent("saver");
    EXPECT_EQ(told, Told{"away"});
}

TEST_F(SessionPresenceTest, ALockThatWasOnlyAskedForEndsWithAnother) {
    presence.isAway("request", SessionPresence::Until::anyIsTakenBack);
    presence.isHere("hint");
    EXPECT_EQ(told, Told{"away"}) << "that was so before";
    presence.isAway("hint");
    presence.isHere("hint");
    EXPECT_EQ(told, (Told{"away", "back"}));
}

TEST_F(SessionPresenceTest, AgreesWithAPlainModelInEveryOrder) {
    std::mt19937 random(1);
    const std::array<std::string, 3> witnesses{"seat", "hint", "saver"};
    enum class Word { here, away, lost };
    std::map<std::string, Word> words;
    std::string expected = "back";
    for (int step = 0; step < 5000; ++step) {
        const auto& witness = witnesses.at(random() % 3);
        const auto what = random() % 3;
        auto& word = words[witness];
        const bool isNews = word != Word::here;
        if (what == 0) {
            word = Word::away;
            presence.isAway(witness);
        } else if (what == 1) {
            word = Word::here;
            presence.isHere(witness);
        } else {
            if (word == Word::away)
                word = Word::lost;
            presence.isSilent(witness);
        }
        const auto count = [&](Word wanted) {
            return std::ranges::count_if(words, [&](auto& each) { return each.second == wanted; });
        };
        const auto before = expected;
        if (count(Word::away) > 0) {
            expected = "away";
        } else if (what == 1 && isNews) {
            expected = "back";
            for (auto& each : words)
                each.second = Word::here;
        } else if (count(Word::lost) > 0) {
            expected = "unclear";
        }
        EXPECT_EQ(told, expected == before ? Told() : Told{expected}) << "step " << step;
        told.clear();
    }
}

} // namespace

} // namespace kestrove
