#include "UI/Composer/OutputContainer.h"
#include "Tests/Support/ScriptedDesktop/ScriptedDisplayLayer.h"
#include "UI/Composer/PlaceholderTexts.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

using Calls = std::vector<std::string>;

class LoggingContainerView final : public OutputContainerView {
public:
    explicit LoggingContainerView(CallLog& calls)
        : m_calls(calls) {}
    void showContent(ContainerView& content) override {
        m_calls.add("content");
        shown = &content;
    }
    void showPlaceholder() override {
        m_calls.add("placeholder");
        shown = nullptr;
    }

    ContainerView* shown = nullptr;

private:
    CallLog& m_calls;
};

class OutputContainerTest : public testing::Test {
protected:
    CallLog calls;
    LoggingContainerView view{calls};
    OutputContainer container{view};
    ScriptedDisplayLayer layer{calls};
    ContainerView content{layer};
    ContainerView otherContent{layer};
};

TEST_F(OutputContainerTest, StartsWithThePlaceholder) {
    EXPECT_EQ(calls.take(), Calls{"placeholder"});
}

TEST_F(OutputContainerTest, ShowsContentAndThePlaceholderInTurns) {
    calls.clear();
    container.setContentView(&content);
    EXPECT_EQ(view.shown, &content);
    container.setContentView(nullptr);
    EXPECT_EQ(calls.take(), (Calls{"content", "placeholder"}));
}

TEST_F(OutputContainerTest, ClearingTwiceDoesNothingTheSecondTime) {
    container.setContentView(&content);
    container.setContentView(nullptr);
    calls.clear();
    container.setContentView(nullptr);
    EXPECT_EQ(calls.take(), Calls{});
}

TEST_F(OutputContainerTest, SettingTheSameViewAgainDoesNothing) {
    container.setContentView(&content);
    calls.clear();
    container.setContentView(&content);
    EXPECT_EQ(calls.take(), Calls{});
}

TEST_F(OutputContainerTest, AnotherViewTakesThePlaceOfTheFirst) {
    container.setContentView(&content);
    calls.clear();
    container.setContentView(&otherContent);
    EXPECT_EQ(calls.take(), Calls{"content"});
    EXPECT_EQ(view.shown, &otherContent);
}

TEST(PlaceholderTexts, AreTwoLines) {
    EXPECT_EQ(PlaceholderTexts::label, "現在、画面は共有されていません\n"
                                       "メニューバーからソースを選択または再試行してください");
    EXPECT_EQ(PlaceholderTexts::fontSize, 14);
    EXPECT_EQ(PlaceholderTexts::maximumNumberOfLines, 2);
}

} // namespace
} // namespace kestrove
