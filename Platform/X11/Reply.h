#pragma once

#include <cstdlib>
#include <memory>

namespace kestrove::x11 {

struct FreeDeleter {
    void operator()(void* memory) const { std::free(memory); }
};

/// A reply, an event or an error as xcb hands them out: allocated by it, freed by us.
template <class Type>
using Reply = std::unique_ptr<Type, FreeDeleter>;

} // namespace kestrove::x11
