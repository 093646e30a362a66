// Process, class, application and shadow of a window, as its program says.
#include "Platform/X11/WindowIdentity/PropertyValues.h"
#include "Tests/Fuzzing/Promise.h"

#include <array>

namespace kestrove::fuzzing {
namespace {

void examineShadow(Input& input) {
    const Rect window{static_cast<double>(static_cast<std::int16_t>(input.half())),
                      static_cast<double>(static_cast<std::int16_t>(input.half())),
                      static_cast<double>(input.half() + 1), static_cast<double>(input.half() + 1)};
    const std::array extents{input.word(), input.word(), input.word(), input.word()};
    const auto bounds = x11::withoutShadow(window, extents);
    promise(bounds.width > 0 && bounds.height > 0, "something is left of a window");
    promise(bounds.minX() >= window.minX() && bounds.maxX() <= window.maxX() &&
                bounds.minY() >= window.minY() && bounds.maxY() <= window.maxY(),
            "a window without its shadow lies in itself");
}

} // namespace

void examine(Input input) {
    examineShadow(input);
    const auto number = input.word();
    const std::string text(input.text());
    constexpr auto machine = "here";
    const auto process = x11::processOf(number, text, machine);
    promise(!process || *process > 0, "a process has a positive number");
    promise(x11::processOf(number, machine, machine).has_value() ==
                (number > 0 && number <= 0x7FFFFFFF),
            "on this machine every possible number is taken");
    if (const auto found = x11::classOf(text))
        promise(!found->empty() && isReadable(*found), "a class is readable");
    if (const auto found = x11::applicationOf(text)) {
        promise(!found->empty() && isReadable(*found), "an application's name is readable");
        promise(!found->contains('/'), "an application's name has no folder");
    }
}

} // namespace kestrove::fuzzing
