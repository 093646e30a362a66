#include "Tests/X11/Application/WindowReader.h"

#include "Tests/Support/Processes/FileContent.h"
#include "Tests/Support/Processes/Waiting.h"
#include "Tests/X11/Application/Paths.h"

#include <algorithm>
#include <cstdio>
#include <filesystem>

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

namespace kestrove::test {

namespace {

/// Where the line begins that begins so.
std::size_t findLine(const std::string& told, const std::string& beginning) {
    return ("\n" + told).find("\n" + beginning);
}

bool hasLine(const std::string& told, const std::string& beginning) {
    return findLine(told, beginning) != std::string::npos;
}

} // namespace

WindowReader::WindowReader(XDesktop& desktop, const std::string& title)
    : m_desktop(desktop) {
    const auto pipe = desktop.folder() / "questions";
    if (::mkfifo(pipe.c_str(), 0600) != 0)
        giveUp("no pipe to the reader of the window");
    // For reading too: to open it does not wait for the reader then.
    m_questions = ::open(pipe.c_str(), O_RDWR | O_CLOEXEC);
    m_reader = desktop.start({"sh", "-c", R"(exec /usr/bin/python3 "$0" "$1" < "$2")",
                              windowReaderPath(), title, pipe.string()});
}

WindowReader::~WindowReader() {
    ::close(m_questions);
}

std::string WindowReader::read() {
    const auto answer = m_desktop.folder() / fmt::format("told-{}", ++m_questionCount);
    const auto question = answer.string() + "\n";
    if (::write(m_questions, question.data(), question.size()) < 0)
        giveUp("nobody reads the window");
    if (!waitUntil([&] { return std::filesystem::exists(answer); }))
        giveUp("the reader of the window does not answer: " + m_reader->logTail());
    auto told = contentOf(answer);
    std::filesystem::remove(answer);
    return told;
}

testing::AssertionResult WindowReader::tells(const std::vector<std::string>& lines,
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

testing::AssertionResult WindowReader::isFocused(std::string_view name) {
    std::string told;
    if (waitUntil([&] {
            told = read();
            return focusedName(told) == name;
        }))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << name << " has no focus\n" << told;
}

std::string WindowReader::focusedName(const std::string& told) {
    const auto state = told.find(",focused,");
    if (state == std::string::npos)
        return {};
    const auto line = told.substr(told.rfind('\n', state) + 1);
    const auto name = line.find('|') + 1;
    return line.substr(name, line.find('|', name) - name);
}

std::optional<xcb_rectangle_t> WindowReader::placeOf(const std::string& told,
                                                     const std::string& beginning) {
    const auto start = findLine(told, beginning);
    if (start == std::string::npos)
        return std::nullopt;
    const auto line = told.substr(start, told.find('\n', start) - start);
    int x = 0;
    int y = 0;
    int width = 0;
    int height = 0;
    const auto place = line.substr(line.rfind('|') + 1);
    if (std::sscanf(place.c_str(), "%d,%d,%d,%d", &x, &y, &width, &height) != 4)
        return std::nullopt;
    return xcb_rectangle_t{static_cast<std::int16_t>(x), static_cast<std::int16_t>(y),
                           static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)};
}

} // namespace kestrove::test
