#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace kestrove {

/// The names of installed applications, out of their desktop entries. All entries are read once, at
/// the first question: what is installed later is unknown until the next start.
///
/// Thread: main.
class DesktopEntries {
public:
    /// Data folders, each with a folder "applications"; the earlier ones win.
    explicit DesktopEntries(std::vector<std::filesystem::path> dataFolders)
        : m_dataFolders(std::move(dataFolders)) {}

    /// $XDG_DATA_HOME (~/.local/share), then $XDG_DATA_DIRS (/usr/local/share, /usr/share).
    [[nodiscard]] static std::vector<std::filesystem::path> foldersOfTheUser();

    /// The application's name in Japanese (as all our texts are), else its plain one. `application`
    /// is the stem of a desktop file or a StartupWMClass, in any case: classes and file names are
    /// capitalised as their authors please.
    [[nodiscard]] std::optional<std::string> applicationName(std::string_view application);

private:
    void readAll();
    void read(const std::filesystem::path& file, const std::string& identifier);

    std::vector<std::filesystem::path> m_dataFolders;
    bool m_isRead = false;
    /// By lower-case identifier, and by lower-case StartupWMClass.
    std::map<std::string, std::string, std::less<>> m_byIdentifier;
    std::map<std::string, std::string, std::less<>> m_byClass;
};

} // namespace kestrove
