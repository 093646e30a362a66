#include "Tests/Contract/ContractSuites.h"

#include <limits>

namespace kestrove::contract {

namespace {
constexpr const char* key = "kestrove.contract.value";
} // namespace

TEST_P(UserDefaultsContract, WhatWasNeverStoredIsAbsent) {
    const auto defaults = desktop().openUserDefaults();
    EXPECT_FALSE(defaults->text(key));
    EXPECT_FALSE(defaults->integer(key));
    EXPECT_FALSE(defaults->boolean(key));
    EXPECT_FALSE(defaults->data(key));
}

TEST_P(UserDefaultsContract, GivesBackEveryTypeInThisRunAndInTheNext) {
    const std::string text = "日本語 = \"quoted\"; %41\\n [section]";
    const UserDefaults::Data bytes{0, 1, 10, 13, 127, 128, 255};
    const auto writing = desktop().openUserDefaults();
    writing->setText("kestrove.text", text);
    writing->setInteger("kestrove.integer", std::numeric_limits<std::int64_t>::min());
    writing->setBoolean("kestrove.true", true);
    writing->setBoolean("kestrove.false", false);
    writing->setData("kestrove.data", bytes);
    const auto reading = desktop().openUserDefaults();
    for (const auto* defaults : {writing.get(), reading.get()}) {
        EXPECT_EQ(defaults->text("kestrove.text"), text);
        EXPECT_EQ(defaults->integer("kestrove.integer"), std::numeric_limits<std::int64_t>::min());
        EXPECT_EQ(defaults->boolean("kestrove.true"), true);
        EXPECT_EQ(defaults->boolean("kestrove.false"), false);
        EXPECT_EQ(defaults->data("kestrove.data"), bytes);
    }
}

TEST_P(UserDefaultsContract, GivesBackWhatIsEmpty) {
    const auto writing = desktop().openUserDefaults();
    writing->setText("kestrove.text", "");
    writing->setData("kestrove.data", {});
    const auto reading = desktop().openUserDefaults();
    EXPECT_EQ(reading->text("kestrove.text"), "");
    EXPECT_EQ(reading->data("kestrove.data"), UserDefaults::Data());
}

TEST_P(UserDefaultsContract, TheLastValueStandsWhateverItsType) {
    const auto writing = desktop().openUserDefaults();
    writing->setText(key, "first");
    writing->setText(key, "second");
    EXPECT_EQ(desktop().openUserDefaults()->text(key), "second");
    writing->setInteger(key, 30);
    const auto reading = desktop().openUserDefaults();
    EXPECT_EQ(reading->integer(key), 30);
    EXPECT_FALSE(reading->data(key)) << "another type counts as absent";
}

TEST_P(UserDefaultsContract, DataIsNotText) {
    const auto writing = desktop().openUserDefaults();
    writing->setData(key, {'t', 'e', 'x', 't'});
    EXPECT_FALSE(writing->text(key));
    EXPECT_FALSE(writing->integer(key));
    EXPECT_FALSE(desktop().openUserDefaults()->text(key));
}

TEST_P(SystemLogContract, KeepsWhatWasWrittenInOrder) {
    auto& log = desktop().systemLog();
    log.write("org.example", "area", LogLevel::error, "first 100% ünïcode");
    log.write("org.example", "", LogLevel::debug, "second");
    EXPECT_TRUE(waitUntil([&] {
        return desktop().readLog() == std::vector<std::string>{"first 100% ünïcode", "second"};
    }));
}

TEST_P(SystemLogContract, CanBeWrittenFromAQueue) {
    const auto queue = desktop().loop().makeSerialQueue("contract.log");
    auto& log = desktop().systemLog();
    queue->post([&log] { log.write("org.example", "", LogLevel::info, "from a queue"); });
    EXPECT_TRUE(
        waitUntil([&] { return desktop().readLog() == std::vector<std::string>{"from a queue"}; }));
}

} // namespace kestrove::contract
