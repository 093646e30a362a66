#include "Platform/X11/HotKeys/PhysicalKeys.h"
#include "Platform/X11/HotKeys/XkbProtocol.h"
#include "Tests/Support/XServer/Reply.h"
#include "Tests/X11/Desktop/X11Fixture.h"

#include <algorithm>
#include <map>
#include <ranges>
#include <set>
#include <string>

namespace kestrove::x11 {
namespace {

/// The names that keymaps give to places on the keyboard, by macOS virtual key code: what the table
/// must agree with, from the other side.
const std::map<std::uint32_t, std::string> places{
    {0, "AC01"},   {1, "AC02"},   {2, "AC03"},   {3, "AC04"},   {4, "AC06"},   {5, "AC05"},
    {6, "AB01"},   {7, "AB02"},   {8, "AB03"},   {9, "AB04"},   {10, "LSGT"},  {11, "AB05"},
    {12, "AD01"},  {13, "AD02"},  {14, "AD03"},  {15, "AD04"},  {16, "AD06"},  {17, "AD05"},
    {18, "AE01"},  {19, "AE02"},  {20, "AE03"},  {21, "AE04"},  {22, "AE06"},  {23, "AE05"},
    {24, "AE12"},  {25, "AE09"},  {26, "AE07"},  {27, "AE11"},  {28, "AE08"},  {29, "AE10"},
    {30, "AD12"},  {31, "AD09"},  {32, "AD07"},  {33, "AD11"},  {34, "AD08"},  {35, "AD10"},
    {36, "RTRN"},  {37, "AC09"},  {38, "AC07"},  {39, "AC11"},  {40, "AC08"},  {41, "AC10"},
    {42, "BKSL"},  {43, "AB08"},  {44, "AB10"},  {45, "AB06"},  {46, "AB07"},  {47, "AB09"},
    {48, "TAB"},   {49, "SPCE"},  {50, "TLDE"},  {51, "BKSP"},  {53, "ESC"},   {64, "FK17"},
    {65, "KPDL"},  {67, "KPMU"},  {69, "KPAD"},  {72, "VOL+"},  {73, "VOL-"},  {74, "MUTE"},
    {75, "KPDV"},  {76, "KPEN"},  {78, "KPSU"},  {79, "FK18"},  {80, "FK19"},  {81, "KPEQ"},
    {82, "KP0"},   {83, "KP1"},   {84, "KP2"},   {85, "KP3"},   {86, "KP4"},   {87, "KP5"},
    {88, "KP6"},   {89, "KP7"},   {90, "FK20"},  {91, "KP8"},   {92, "KP9"},   {93, "AE13"},
    {94, "AB11"},  {95, "I129"},  {96, "FK05"},  {97, "FK06"},  {98, "FK07"},  {99, "FK03"},
    {100, "FK08"}, {101, "FK09"}, {102, "MUHE"}, {103, "FK11"}, {104, "HENK"}, {105, "FK13"},
    {106, "FK16"}, {107, "FK14"}, {109, "FK10"}, {110, "COMP"}, {111, "FK12"}, {113, "FK15"},
    {114, "INS"},  {115, "HOME"}, {116, "PGUP"}, {117, "DELE"}, {118, "FK04"}, {119, "END"},
    {120, "FK02"}, {121, "PGDN"}, {122, "FK01"}, {123, "LEFT"}, {124, "RGHT"}, {125, "DOWN"},
    {126, "UP"}};

TEST(PhysicalKeys, EachHasOneNumberInEachWorld) {
    EXPECT_TRUE(
        std::ranges::is_sorted(physicalKeys(), std::ranges::less_equal{}, &PhysicalKey::keyCode));
    std::set<xcb_keycode_t> codes;
    for (const auto& key : physicalKeys()) {
        EXPECT_TRUE(codes.insert(key.serverCode()).second) << key.keyCode;
        EXPECT_EQ(serverCodeOf(key.keyCode), key.serverCode());
        EXPECT_EQ(keyCodeOf(key.serverCode()), key.keyCode);
    }
}

TEST(PhysicalKeys, KnowNoOthers) {
    std::set<std::uint32_t> known;
    for (const auto& key : physicalKeys())
        known.insert(key.keyCode);
    for (std::uint32_t keyCode = 0; keyCode < 400; ++keyCode)
        EXPECT_EQ(serverCodeOf(keyCode).has_value(), known.contains(keyCode)) << keyCode;
    // Control, Shift, Alt, Super and Caps Lock: what goes with a hot key, not what it is on.
    for (const std::uint32_t code :
         {37U, 50U, 62U, 64U, 66U, 77U, 105U, 108U, 133U, 134U, 0U, 7U, 256U, 1000U})
        EXPECT_FALSE(keyCodeOf(code)) << code;
}

class PhysicalKeysOfTheServer : public X11Fixture {};

TEST_F(PhysicalKeysOfTheServer, LieWhereItsKeymapHasThem) {
    auto* const server = desktop.connection();
    const test::Reply used(
        xcb_xkb_use_extension_reply(server, xcb_xkb_use_extension(server, 1, 0), nullptr));
    ASSERT_TRUE(used && used->supported);
    const test::Reply reply(xcb_xkb_get_names_reply(
        server, xcb_xkb_get_names(server, XCB_XKB_ID_USE_CORE_KBD, XCB_XKB_NAME_DETAIL_KEY_NAMES),
        nullptr));
    ASSERT_TRUE(reply);
    xcb_xkb_get_names_value_list_t list{};
    xcb_xkb_get_names_value_list_unpack(xcb_xkb_get_names_value_list(reply.get()), reply->nTypes,
                                        reply->indicators, reply->virtualMods, reply->groupNames,
                                        reply->nKeys, reply->nKeyAliases, reply->nRadioGroups,
                                        reply->which, &list);
    const auto nameAt = [&](xcb_keycode_t code) {
        std::string name;
        for (const char letter : list.keyNames[code - reply->firstKey].name) {
            if (letter != '\0')
                name += letter;
        }
        return name;
    };
    ASSERT_EQ(physicalKeys().size(), places.size());
    for (const auto& key : physicalKeys()) {
        ASSERT_TRUE(places.contains(key.keyCode)) << key.keyCode;
        EXPECT_EQ(nameAt(key.serverCode()), places.at(key.keyCode)) << key.keyCode;
    }
}

} // namespace
} // namespace kestrove::x11
