#include "Async/Published.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace kestrove {
namespace {

TEST(Published, AnnouncesThenStoresThenPersists) {
    std::vector<std::string> log;
    Published<int> published(
        1, [&](int stored) { log.push_back("persist " + std::to_string(stored)); });
    const auto subscription = published.subscribe([&](int announced) {
        log.push_back("told " + std::to_string(announced) + " while " +
                      std::to_string(published.get()));
    });
    published.set(2);
    EXPECT_EQ(log, (std::vector<std::string>{"told 2 while 1", "persist 2"}));
    EXPECT_EQ(published.get(), 2);
}

TEST(Published, AnnouncesAnEqualValueAgain) {
    int told = 0;
    Published<int> published(1);
    const auto subscription = published.subscribe([&](int) { ++told; });
    published.set(1);
    published.set(1);
    EXPECT_EQ(told, 2);
}

TEST(Published, AnObserverIsToldTheValueAtOnceAndASubscriberIsNot) {
    std::vector<int> observed;
    std::vector<int> subscribed;
    Published<int> published(1);
    const auto observer = published.observe([&](int value) { observed.push_back(value); });
    const auto subscriber = published.subscribe([&](int value) { subscribed.push_back(value); });
    published.set(2);
    EXPECT_EQ(observed, (std::vector{1, 2}));
    EXPECT_EQ(subscribed, (std::vector{2}));
}

TEST(Published, ANestedValueIsStoredFirstAndTheOuterOneLast) {
    std::vector<int> told;
    std::vector<int> stored;
    Published<int> published(0, [&](int value) { stored.push_back(value); });
    const auto nesting = published.subscribe([&](int value) {
        if (value == 1)
            published.set(2);
    });
    const auto later = published.subscribe([&](int value) { told.push_back(value); });
    published.set(1);
    EXPECT_EQ(told, (std::vector{2, 1}));
    EXPECT_EQ(stored, (std::vector{2, 1}));
    EXPECT_EQ(published.get(), 1);
}

TEST(Published, ItsOwnerMayBeDestroyedByAnObserverInsideItsNotification) {
    struct Owner {
        explicit Owner(std::string* persisted)
            : field("old", [persisted](const std::string& value) { *persisted = value; }) {}
        Published<std::string> field;
    };
    std::string persisted;
    bool wasLaterOneTold = false;
    auto owner = std::make_unique<Owner>(&persisted);
    const auto destroying = owner->field.subscribe([&](const std::string&) { owner.reset(); });
    const auto later = owner->field.subscribe([&](const std::string&) { wasLaterOneTold = true; });
    owner->field.set("new");
    EXPECT_FALSE(owner);
    EXPECT_EQ(persisted, "");
    EXPECT_FALSE(wasLaterOneTold) << "it would have been told of an owner that has gone";
}

TEST(Published, ItsOwnerMayBeDestroyedInsideTheFirstCallOfAnObserver) {
    auto published = std::make_unique<Published<int>>(1);
    const auto subscription = published->observe([&](int) { published.reset(); });
    EXPECT_FALSE(published);
    EXPECT_TRUE(subscription.isActive());
}

TEST(Published, ItsOwnerMayBeDestroyedByThePersistingItself) {
    std::unique_ptr<Published<int>> published;
    int stored = 0;
    published = std::make_unique<Published<int>>(1, [&](int value) {
        published.reset();
        stored = value;
    });
    published->set(2);
    EXPECT_EQ(stored, 2);
}

TEST(Published, ASubscriptionMayOutliveIt) {
    const auto marker = std::make_shared<int>(0);
    Subscription subscription;
    {
        Published<int> published(1);
        subscription = published.subscribe([marker](int) {});
    }
    EXPECT_EQ(marker.use_count(), 1);
    subscription.cancel();
}

} // namespace
} // namespace kestrove
