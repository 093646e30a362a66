#include "Core/CaptureSource/CaptureSource.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

const WindowOwnerIdentity editor{4711, "org.example.editor"};

TEST(CaptureSource, ADisplayAndAWindowOfOneNumberAreDistinct) {
    const CaptureSourceSet sources{CaptureSource::display(5), CaptureSource::window(5),
                                   CaptureSource::display(5)};
    EXPECT_EQ(sources.size(), 2U);
    EXPECT_NE(CaptureSource::display(5), CaptureSource::window(5));
    EXPECT_NE(CaptureSource::display(5), CaptureSource::display(6));
}

TEST(CaptureSource, TheHashTellsKindsAndNumbersApart) {
    const std::hash<CaptureSource> hash;
    EXPECT_EQ(hash(CaptureSource::window(5)), hash(CaptureSource::window(5)));
    EXPECT_NE(hash(CaptureSource::window(5)), hash(CaptureSource::display(5)));
    EXPECT_NE(hash(CaptureSource::window(5)), hash(CaptureSource::window(6)));
}

TEST(CaptureSourceInfo, AnAbsentSubtitleIsNotAnEmptyOneButTheItemIsTheSame) {
    const CaptureSourceInfo absent{CaptureSource::window(5), "Notes", std::nullopt, editor};
    CaptureSourceInfo empty = absent;
    empty.subtitle = "";
    EXPECT_NE(absent, empty);
    EXPECT_EQ(absent.id(), empty.id());
    EXPECT_NE(std::hash<CaptureSourceInfo>{}(absent), std::hash<CaptureSourceInfo>{}(empty));
}

TEST(CaptureSourceInfo, EveryFieldCounts) {
    const CaptureSourceInfo info{CaptureSource::window(5), "Notes", "Editor", editor};
    EXPECT_EQ(info, CaptureSourceInfo(info));
    const auto differs = [&info](auto change) {
        CaptureSourceInfo other = info;
        change(other);
        return other != info;
    };
    EXPECT_TRUE(differs([](auto& other) { other.source = CaptureSource::display(5); }));
    EXPECT_TRUE(differs([](auto& other) { other.title = "Other"; }));
    EXPECT_TRUE(differs([](auto& other) { other.subtitle = "Other"; }));
    EXPECT_TRUE(differs([](auto& other) { other.windowOwner.reset(); }));
    EXPECT_TRUE(differs([](auto& other) { other.windowOwner->processID = 1; }));
    EXPECT_TRUE(differs([](auto& other) { other.windowOwner->bundleIdentifier = "x"; }));
}

TEST(ManualWindowSelection, AnotherOwnerProcessMakesAnotherSelection) {
    const ManualWindowSelection selection{5, editor};
    const ManualWindowSelection reused{5, {4712, editor.bundleIdentifier}};
    EXPECT_NE(selection, reused);
    const std::hash<ManualWindowSelection> hash;
    EXPECT_NE(hash(selection), hash(reused));
    EXPECT_EQ(hash(selection), hash(ManualWindowSelection{5, editor}));
}

} // namespace
} // namespace kestrove
