#include "Async/Signal.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace kestrove {
namespace {

class SignalTest : public testing::Test {
protected:
    void emit() { m_signal->emit(0); }
    /// Subscribes a letter that also does something.
    void add(char letter, std::function<void()> action = [] {}) {
        m_subscriptions.push_back(m_signal->subscribe([this, letter, action](int) {
            m_log += letter;
            action();
        }));
    }

    std::unique_ptr<Signal<int>> m_signal = std::make_unique<Signal<int>>();
    std::vector<Subscription> m_subscriptions;
    std::string m_log;
};

TEST_F(SignalTest, TellsInTheOrderOfSubscribing) {
    add('a');
    add('b');
    add('c');
    emit();
    EXPECT_EQ(m_log, "abc");
}

TEST_F(SignalTest, ASubscriberMayUnsubscribeItselfWhileBeingTold) {
    add('a', [this] { m_subscriptions[0].cancel(); });
    add('b');
    emit();
    emit();
    EXPECT_EQ(m_log, "abb");
    EXPECT_FALSE(m_subscriptions[0].isActive());
}

TEST_F(SignalTest, ASubscriberMayUnsubscribeAnEarlierOne) {
    add('a');
    add('b', [this] { m_subscriptions[0].cancel(); });
    emit();
    emit();
    EXPECT_EQ(m_log, "abb");
}

TEST_F(SignalTest, ALaterOneThatWasUnsubscribedMeanwhileIsNotTold) {
    add('a', [this] {
        m_subscriptions[1].cancel();
        m_subscriptions[2].cancel();
    });
    add('b');
    add('c');
    add('d');
    emit();
    EXPECT_EQ(m_log, "ad");
}

TEST_F(SignalTest, OneWhoSubscribesWhileBeingToldIsToldFromTheNextTimeOn) {
    add('a', [this] {
        if (m_subscriptions.size() == 1)
            add('b');
    });
    emit();
    EXPECT_EQ(m_log, "a");
    emit();
    EXPECT_EQ(m_log, "aab");
}

TEST_F(SignalTest, ASubscriberMayDestroyTheSignal) {
    add('a', [this] { m_signal.reset(); });
    add('b');
    emit();
    EXPECT_EQ(m_log, "a");
    m_subscriptions.clear();
}

TEST_F(SignalTest, ASubscriberMayEmitAgain) {
    bool isNested = false;
    add('a', [&] {
        if (!std::exchange(isNested, true))
            emit();
    });
    add('b');
    emit();
    EXPECT_EQ(m_log, "aabb");
}

TEST_F(SignalTest, AnEndedSubscriptionLetsGoOfItsCallback) {
    const auto marker = std::make_shared<int>(0);
    auto cancelled = m_signal->subscribe([marker](int) {});
    auto outliving = m_signal->subscribe([marker](int) {});
    EXPECT_EQ(marker.use_count(), 3);
    cancelled.cancel();
    EXPECT_EQ(marker.use_count(), 2);
    m_signal.reset();
    EXPECT_EQ(marker.use_count(), 1);
}

TEST_F(SignalTest, ACallbackMayOwnItsOwnSubscription) {
    auto owned = std::make_shared<Subscription>();
    *owned = m_signal->subscribe([this, owned](int) {
        m_log += 'a';
        owned->cancel();
    });
    const std::weak_ptr<Subscription> watched = owned;
    owned.reset();
    emit();
    emit();
    EXPECT_EQ(m_log, "a");
    EXPECT_TRUE(watched.expired());
}

TEST(Subscription, EndsOnceHoweverItIsMoved) {
    int ends = 0;
    {
        Subscription first([&] { ++ends; });
        Subscription second(std::move(first));
        Subscription third([&] { ends += 10; });
        third = std::move(second);
        EXPECT_EQ(ends, 10) << "what it stood for before has ended";
        EXPECT_TRUE(third.isActive());
        EXPECT_FALSE(second.isActive()); // NOLINT(bugprone-use-after-move): it is empty, not odd
    }
    EXPECT_EQ(ends, 11);
}

} // namespace
} // namespace kestrove
