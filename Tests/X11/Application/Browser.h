#pragma once

#include "Tests/Support/Processes/FileContent.h"

#include <filesystem>
#include <string>

namespace kestrove::test {

/// A browser that only writes down what it is to open, for programs that are started with its PATH.
class Browser {
public:
    /// In a folder that exists.
    explicit Browser(const std::filesystem::path& folder)
        : m_folder(folder / "bin")
        , m_opened(folder / "opened") {
        const auto program = m_folder / "xdg-open";
        std::filesystem::create_directories(m_folder);
        setContent(program, "#!/bin/sh\nprintf %s \"$1\" > " + m_opened.string() + "\n");
        std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    }

    /// KEY=VALUE for the environment.
    [[nodiscard]] std::string path() const {
        return "PATH=" + m_folder.string() + ":/usr/bin:/bin";
    }
    /// The address that was opened last; empty before.
    [[nodiscard]] std::string opened() const { return contentOf(m_opened); }

private:
    std::filesystem::path m_folder;
    std::filesystem::path m_opened;
};

} // namespace kestrove::test
