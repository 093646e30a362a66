#include "Platform/Linux/ProcessEnd.h"

#include <sys/syscall.h>
#include <unistd.h>
#include <utility>

namespace kestrove {

std::unique_ptr<ProcessEnd> ProcessEnd::watch(DescriptorWatching& watching, ProcessID process,
                                              std::function<void()> ended) {
    // glibc 2.36 declares its wrapper without C linkage, so that C++ cannot link it.
    const auto descriptor = static_cast<int>(syscall(SYS_pidfd_open, process, 0));
    if (descriptor < 0)
        return nullptr;
    std::unique_ptr<ProcessEnd> end(new ProcessEnd(descriptor));
    end->m_readable =
        watching.watchReadable(descriptor, [watched = end.get(), told = std::move(ended)] {
            // The descriptor stays readable for good; what is told may destroy this.
            const auto tell = told;
            watched->m_readable.cancel();
            tell();
        });
    return end;
}

ProcessEnd::~ProcessEnd() {
    m_readable.cancel();
    close(m_descriptor);
}

} // namespace kestrove
