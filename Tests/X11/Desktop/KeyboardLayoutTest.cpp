#include "Platform/X11/HotKeys/KeyTexts.h"
#include "Platform/X11/HotKeys/XkbProtocol.h"
#include "Tests/X11/Desktop/HotKeysFixture.h"

namespace kestrove::x11 {
namespace {

using Told = std::vector<std::uint32_t>;
namespace Keys = test::ServerKey;

class KeyboardLayout : public HotKeysFixture {
protected:
    /// A layout arrives in pieces: the last one is what `xkbcomp` uploads.
    void setLayout(std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), "setxkbmap");
        run(arguments);
        settle();
    }
    void chooseGroup(std::uint8_t group) {
        auto* const server = desktop.connection();
        xcb_xkb_use_extension_reply_t* const used =
            xcb_xkb_use_extension_reply(server, xcb_xkb_use_extension(server, 1, 0), nullptr);
        std::free(used);
        xcb_xkb_latch_lock_state(server, XCB_XKB_ID_USE_CORE_KBD, 0, 0, 1, group, 0, 0, 0);
        test::sync(server);
    }

    KeyTexts texts{*connection};
};

TEST_F(KeyboardLayout, DoesNotMoveHotKeys) {
    registered(keyS, controlCommand, 1);
    for (const auto* const layout : {"jp,us", "us,jp", "fr", "de", "ru,us"}) {
        setLayout({layout});
        press({control, super, Keys::s});
        EXPECT_EQ(told(), Told{1}) << layout;
        chooseGroup(1);
        press({control, super, Keys::s});
        EXPECT_EQ(told(), Told{1}) << layout << ", the second one";
        chooseGroup(0);
    }
}

TEST_F(KeyboardLayout, NewOnesCanBeRegisteredUnderASecondLayout) {
    setLayout({"jp,us"});
    chooseGroup(1);
    registered(keyS, controlCommand, 1);
    press({control, super, Keys::s});
    EXPECT_EQ(told(), Told{1});
    chooseGroup(0);
    press({control, super, Keys::s});
    EXPECT_EQ(told(), Told{1});
}

TEST_F(KeyboardLayout, HotKeysFollowTheirModifiersToOtherKeys) {
    registered(keyS, 0x100, 1);
    setLayout({"us", "-option", "altwin:swap_lalt_lwin"});
    press({Keys::alt, Keys::s});
    EXPECT_EQ(told(), Told{1}) << "the key that is Super now";
    press({super, Keys::s});
    EXPECT_EQ(told(), Told());
}

TEST_F(KeyboardLayout, HotKeysFollowModifiersThatGetOtherBits) {
    registered(keyS, 0x100, 1);
    run({"xmodmap", "-e", "clear mod3", "-e", "remove mod4 = Super_L Super_R", "-e",
         "add mod3 = Super_L"});
    ASSERT_TRUE(loop.spinUntil([this] {
        press({super, Keys::s});
        return !told().empty();
    }));
    EXPECT_TRUE(takeByOther(XCB_MOD_MASK_4, Keys::s))
        << "the old bit's combinations are free again";
}

TEST_F(KeyboardLayout, SaysWhatAKeyTypes) {
    setLayout({"us"});
    EXPECT_EQ(texts.characters(keyS), "s");
    EXPECT_EQ(texts.characters(50), "`");
    EXPECT_EQ(texts.characters(18), "1");
    setLayout({"fr"});
    EXPECT_EQ(texts.characters(12), "a") << "the place of Q";
    EXPECT_EQ(texts.characters(18), "&");
    EXPECT_EQ(texts.characters(19), "é");
    setLayout({"jp,us"});
    EXPECT_EQ(texts.characters(33), "@");
    chooseGroup(1);
    EXPECT_EQ(texts.characters(33), "[");
    for (const std::uint32_t silent : {36U, 48U, 51U, 53U, 117U, 122U, 123U, 400U})
        EXPECT_EQ(texts.characters(silent), "") << silent;
}

} // namespace
} // namespace kestrove::x11
