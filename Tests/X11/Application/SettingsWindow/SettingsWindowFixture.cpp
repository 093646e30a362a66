#include "Tests/X11/Application/SettingsWindow/SettingsWindowFixture.h"

#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/Support/XServer/Reply.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrove::test {

namespace {

namespace Keys = ServerKey;
constexpr std::uint16_t controlSuper = XCB_MOD_MASK_CONTROL | XCB_MOD_MASK_4;

/// Of what was told, the name of the element with the focus; empty when none has it.
std::string focusedName(const std::string& told) {
    const auto state = told.find(",focused,");
    if (state == std::string::npos)
        return {};
    const auto line = told.substr(told.rfind('\n', state) + 1);
    const auto name = line.find('|') + 1;
    return line.substr(name, line.find('|', name) - name);
}

bool hasLine(const std::string& told, const std::string& beginning) {
    return ("\n" + told).find("\n" + beginning) != std::string::npos;
}

} // namespace

SettingsWindowFixture::SettingsWindowFixture(const std::string& title)
    : ApplicationFixture(WindowManager::openbox, SessionBus::own) {
    const auto pipe = desktop.folder() / "questions";
    if (::mkfifo(pipe.c_str(), 0600) != 0)
        giveUp("no pipe to the reader of the window");
    // For reading too: to open it does not wait for the reader then.
    m_questions = ::open(pipe.c_str(), O_RDWR | O_CLOEXEC);
    m_reader = desktop.start({"sh", "-c", R"(exec /usr/bin/python3 "$0" "$1" < "$2")",
                              KESTROVE_WINDOW_READER, title, pipe.string()});
}

SettingsWindowFixture::~SettingsWindowFixture() {
    ::close(m_questions);
}

void SettingsWindowFixture::open(const std::string& settings) {
    writeSettings(onlyDisplay("RIGHT") + settings);
    start(std::vector<std::string>{"env", "QT_LINUX_ACCESSIBILITY_ALWAYS_ON=1", KESTROVE_PROGRAM});
    openMenuByKey();
    chooseFromMenuEnd(3);
    ASSERT_TRUE(waitUntil([this] { return !read().empty(); }));
}

std::string SettingsWindowFixture::read() {
    const auto answer = desktop.folder() / fmt::format("told-{}", ++m_questionCount);
    const auto question = answer.string() + "\n";
    if (::write(m_questions, question.data(), question.size()) < 0)
        giveUp("nobody reads the window");
    if (!waitUntil([&] { return std::filesystem::exists(answer); }))
        giveUp("the reader of the window does not answer: " + m_reader->logTail());
    auto told = contentOf(answer);
    std::filesystem::remove(answer);
    return told;
}

testing::AssertionResult SettingsWindowFixture::tells(const std::vector<std::string>& lines,
                                                      const std::vector<std::string>& absent) {
    std::string told;
    const auto isTold = [&](const std::string& line) { return hasLine(told, line); };
    if (waitUntil([&] {
            told = read();
            return std::ranges::all_of(lines, isTold) && std::ranges::none_of(absent, isTold);
        }))
        return testing::AssertionSuccess();
    auto failure = testing::AssertionFailure();
    for (const auto& line : lines) {
        if (!isTold(line))
            failure << "missing: " << line << "\n";
    }
    for (const auto& line : absent) {
        if (isTold(line))
            failure << "there: " << line << "\n";
    }
    return failure << told;
}

testing::AssertionResult SettingsWindowFixture::isFocused(std::string_view name) {
    std::string told;
    if (waitUntil([&] {
            told = read();
            return focusedName(told) == name;
        }))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << name << " has no focus\n" << told;
}

std::string SettingsWindowFixture::recorder(std::string_view action, std::string_view keys,
                                            std::string_view status) {
    return fmt::format("push button|{}のショートカット|{}、{}。", action, keys, status);
}

std::string SettingsWindowFixture::recording(std::string_view action) {
    return fmt::format("push button|{}のショートカット|入力中。", action);
}

void SettingsWindowFixture::press(const std::vector<xcb_keycode_t>& keys) {
    pressTogether(desktop.connection(), keys);
}

void SettingsWindowFixture::pressControlSuper(xcb_keycode_t key) {
    press({Keys::control, Keys::super, key});
}

void SettingsWindowFixture::tabTo(std::string_view name) {
    constexpr int more = 12; // than there are
    for (int count = 0; count < more; ++count) {
        if (focusedName(read()) == name)
            return;
        press({Keys::tab});
    }
    FAIL() << "Tab does not lead to " << name;
}

void SettingsWindowFixture::record(std::string_view action,
                                   const std::vector<xcb_keycode_t>& keys) {
    tabTo(fmt::format("{}のショートカット", action));
    press({Keys::returnKey});
    ASSERT_TRUE(tells({recording(action)}));
    press(keys);
    ASSERT_TRUE(tells({}, {recording(action)}));
}

void SettingsWindowFixture::focusOther() {
    m_other.emplace(desktop.displayName(),
                    TestWindow::Options{.geometry = {4, 476, 30, 30}, .title = "other"});
    const auto hasFocus = [this] {
        const Reply reply(xcb_get_input_focus_reply(
            desktop.connection(), xcb_get_input_focus(desktop.connection()), nullptr));
        return reply && reply->focus == m_other->id();
    };
    EXPECT_TRUE(waitUntil(hasFocus));
}

void SettingsWindowFixture::closeOther() {
    m_other.reset();
    EXPECT_TRUE(waitUntil([this] { return !focusedName(read()).empty(); }));
}

void SettingsWindowFixture::take(xcb_keycode_t key) {
    const auto cookie = xcb_grab_key_checked(desktop.connection(), 0, desktop.root(), controlSuper,
                                             key, XCB_GRAB_MODE_ASYNC, XCB_GRAB_MODE_ASYNC);
    ASSERT_FALSE(Reply(xcb_request_check(desktop.connection(), cookie)));
}

void SettingsWindowFixture::giveBack(xcb_keycode_t key) {
    xcb_ungrab_key(desktop.connection(), key, desktop.root(), controlSuper);
    sync(desktop.connection());
}

testing::AssertionResult SettingsWindowFixture::stores(std::string_view text) {
    const auto isStored = [&] { return stored().find(text) != std::string::npos; };
    return (waitUntil(isStored) ? testing::AssertionSuccess() : testing::AssertionFailure())
           << text << " in\n"
           << stored();
}

std::string SettingsWindowFixture::stored() const {
    return contentOf(settingsFile());
}

} // namespace kestrove::test
