#include "Platform/Linux/DesktopEntries.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <system_error>

namespace kestrove {
namespace {

namespace fs = std::filesystem;

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    for (char& each : lower) {
        if (each >= 'A' && each <= 'Z')
            each = static_cast<char>(each - 'A' + 'a');
    }
    return lower;
}

std::string environment(const char* name, std::string otherwise) {
    const char* const value = std::getenv(name);
    return value && *value ? value : std::move(otherwise);
}

/// The keys of the main group of an entry.
std::map<std::string, std::string> readMainGroup(const fs::path& file) {
    std::ifstream stream(file);
    std::map<std::string, std::string> keys;
    bool isInMainGroup = false;
    for (std::string line; std::getline(stream, line);) {
        if (line.starts_with('[')) {
            isInMainGroup = line.starts_with("[Desktop Entry]");
            continue;
        }
        const auto equals = line.find('=');
        if (!isInMainGroup || line.starts_with('#') || equals == std::string::npos)
            continue;
        const auto keyEnd = line.find_last_not_of(' ', equals == 0 ? 0 : equals - 1);
        const auto valueStart = line.find_first_not_of(' ', equals + 1);
        keys.emplace(line.substr(0, keyEnd + 1),
                     valueStart == std::string::npos ? std::string() : line.substr(valueStart));
    }
    return keys;
}

/// The path below "applications" without ".desktop", its folders joined by "-".
std::string identifierOf(const fs::path& relative) {
    std::string identifier = relative.parent_path().generic_string();
    std::ranges::replace(identifier, '/', '-');
    if (!identifier.empty())
        identifier += '-';
    return lowerCase(identifier + relative.stem().string());
}

} // namespace

std::vector<fs::path> DesktopEntries::foldersOfTheUser() {
    std::vector<fs::path> folders;
    folders.emplace_back(environment("XDG_DATA_HOME", environment("HOME", "") + "/.local/share"));
    std::istringstream shared(environment("XDG_DATA_DIRS", "/usr/local/share:/usr/share"));
    for (std::string folder; std::getline(shared, folder, ':');) {
        if (!folder.empty())
            folders.emplace_back(folder);
    }
    return folders;
}

std::optional<std::string> DesktopEntries::applicationName(std::string_view application) {
    if (!m_isRead)
        readAll();
    const auto key = lowerCase(application);
    if (const auto found = m_byIdentifier.find(key); found != m_byIdentifier.end())
        return found->second;
    if (const auto found = m_byClass.find(key); found != m_byClass.end())
        return found->second;
    return std::nullopt;
}

void DesktopEntries::readAll() {
    m_isRead = true;
    for (const auto& folder : m_dataFolders) {
        const auto applications = folder / "applications";
        std::error_code error;
        // Sorted, so that which of two equal classes wins does not depend on the file system.
        std::vector<fs::path> files;
        for (fs::recursive_directory_iterator each(applications, error), end; each != end;
             each.increment(error)) {
            if (error)
                break;
            if (each->path().extension() == ".desktop")
                files.push_back(each->path());
        }
        std::ranges::sort(files);
        for (const auto& file : files)
            read(file, identifierOf(file.lexically_relative(applications)));
    }
}

void DesktopEntries::read(const fs::path& file, const std::string& identifier) {
    if (m_byIdentifier.contains(identifier))
        return;
    const auto keys = readMainGroup(file);
    const auto value = [&](const std::string& key) {
        const auto found = keys.find(key);
        return found == keys.end() ? std::string() : found->second;
    };
    const auto japanese = value("Name[ja]");
    const auto name = japanese.empty() ? value("Name") : japanese;
    // "Hidden" means that the user has deleted the entry.
    if (name.empty() || value("Hidden") == "true")
        return;
    m_byIdentifier.emplace(identifier, name);
    if (const auto windowClass = value("StartupWMClass"); !windowClass.empty())
        m_byClass.emplace(lowerCase(windowClass), name);
}

} // namespace kestrove
