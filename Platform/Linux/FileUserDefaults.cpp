#include "Platform/Linux/FileUserDefaults.h"

#include "Platform/Linux/AtomicFile.h"
#include "Platform/Linux/DefaultsDocument.h"

#include <cstdlib>
#include <fmt/format.h>
#include <pwd.h>
#include <unistd.h>
#include <utility>

namespace kestrove {

namespace {

std::filesystem::path absoluteFromEnvironment(const char* name) {
    const char* const value = std::getenv(name);
    std::filesystem::path path = value ? value : "";
    return path.is_absolute() ? path : std::filesystem::path();
}

std::filesystem::path homeFolder() {
    if (auto home = absoluteFromEnvironment("HOME"); !home.empty())
        return home;
    const passwd* const user = ::getpwuid(::getuid());
    return user && user->pw_dir ? user->pw_dir : "";
}

} // namespace

FileUserDefaults::FileUserDefaults(std::filesystem::path file, Report report)
    : m_file(std::move(file))
    , m_report(std::move(report)) {
    const auto content = AtomicFile::read(m_file);
    if (content)
        m_values = DefaultsDocument(*content).values();
    else if (content.error() != std::errc::no_such_file_or_directory)
        this->report(LogLevel::error, "settings cannot be read", content.error());
}

std::filesystem::path FileUserDefaults::defaultFile(std::string_view folder) {
    auto base = absoluteFromEnvironment("XDG_CONFIG_HOME");
    if (base.empty()) {
        const auto home = homeFolder();
        if (home.empty())
            return {};
        base = home / ".config";
    }
    return base / folder / fmt::format("{}.conf", folder);
}

template <class Type>
std::optional<Type> FileUserDefaults::get(std::string_view key) const {
    const auto found = m_values.find(key);
    if (found == m_values.end())
        return std::nullopt;
    const auto* const value = std::get_if<Type>(&found->second);
    return value ? std::optional<Type>(*value) : std::nullopt;
}

std::optional<std::string> FileUserDefaults::text(std::string_view key) const {
    return get<std::string>(key);
}

std::optional<std::int64_t> FileUserDefaults::integer(std::string_view key) const {
    return get<std::int64_t>(key);
}

std::optional<bool> FileUserDefaults::boolean(std::string_view key) const {
    return get<bool>(key);
}

std::optional<UserDefaults::Data> FileUserDefaults::data(std::string_view key) const {
    return get<Data>(key);
}

void FileUserDefaults::setText(std::string_view key, std::string_view value) {
    set(key, std::string(value));
}

void FileUserDefaults::setInteger(std::string_view key, std::int64_t value) {
    set(key, value);
}

void FileUserDefaults::setBoolean(std::string_view key, bool value) {
    set(key, value);
}

void FileUserDefaults::setData(std::string_view key, const Data& value) {
    set(key, value);
}

void FileUserDefaults::set(std::string_view key, DefaultsText::Value value) {
    m_values.insert_or_assign(std::string(key), std::move(value));
    m_unstored.emplace(key);
    const auto outcome = store();
    if (!outcome)
        m_unstored.clear();
    reportStoring(outcome);
}

std::error_code FileUserDefaults::store() const {
    const auto before = AtomicFile::read(m_file);
    if (!before && before.error() != std::errc::no_such_file_or_directory)
        return before.error();
    DefaultsDocument document(before ? *before : std::string());
    for (const auto& key : m_unstored)
        document.set(key, m_values.find(key)->second);
    const auto after = document.text();
    return before && *before == after ? std::error_code() : AtomicFile::write(m_file, after);
}

void FileUserDefaults::reportStoring(std::error_code outcome) {
    // A setting may change many times a second; only what is new is worth a line.
    if (outcome == m_failure)
        return;
    m_failure = outcome;
    if (outcome)
        report(LogLevel::error, "settings cannot be stored, they hold for this run", outcome);
    else
        report(LogLevel::standard, "settings are stored again", {});
}

void FileUserDefaults::report(LogLevel level, std::string_view what, std::error_code reason) const {
    if (!m_report)
        return;
    const auto why = reason ? fmt::format(": {}", reason.message()) : std::string();
    m_report(level, fmt::format("[kestrove] {} ({}){}", what, m_file.native(), why));
}

} // namespace kestrove
