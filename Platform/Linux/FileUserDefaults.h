#pragma once

#include "Desktop/SystemLog.h"
#include "Desktop/UserDefaults.h"
#include "Platform/Linux/DefaultsText.h"

#include <filesystem>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <system_error>

namespace kestrove {

/// The user's stored values in one text file, which the user may edit (its form: DefaultsDocument
/// and DefaultsText).
///
/// The file is read when the store is made. Every write reads it anew, changes its one line and
/// replaces the file as a whole, so that what somebody edited meanwhile is kept. A file that is
/// there but cannot be read is never replaced.
///
/// Nobody is told of a write that fails, except the reader of the log: one line when storing begins
/// to fail, or fails for another reason, and one when it works again. What could not be stored is
/// stored then.
///
/// Thread: main.
class FileUserDefaults final : public UserDefaults {
public:
    /// Takes a line for the log.
    using Report = std::function<void(LogLevel level, std::string_view line)>;

    /// `file` need not exist, nor its folder.
    explicit FileUserDefaults(std::filesystem::path file, Report report = {});

    /// `folder`/`folder`.conf in the user's configuration folder: `$XDG_CONFIG_HOME`, or `.config`
    /// in the home folder when that is unset or not absolute. Empty when there is no home folder:
    /// a store made with it stores nothing.
    [[nodiscard]] static std::filesystem::path defaultFile(std::string_view folder);

    std::optional<std::string> text(std::string_view key) const override;
    std::optional<std::int64_t> integer(std::string_view key) const override;
    std::optional<bool> boolean(std::string_view key) const override;
    std::optional<Data> data(std::string_view key) const override;

    void setText(std::string_view key, std::string_view value) override;
    void setInteger(std::string_view key, std::int64_t value) override;
    void setBoolean(std::string_view key, bool value) override;
    void setData(std::string_view key, const Data& value) override;

private:
    template <class Type>
    std::optional<Type> get(std::string_view key) const;
    void set(std::string_view key, DefaultsText::Value value);
    [[nodiscard]] std::error_code store() const;
    void reportStoring(std::error_code outcome);
    void report(LogLevel level, std::string_view what, std::error_code reason) const;

    std::filesystem::path m_file;
    Report m_report;
    /// Why the latest write failed, if it did.
    std::error_code m_failure;
    std::map<std::string, DefaultsText::Value, std::less<>> m_values;
    /// Set in this run but not in the file: each write tries them again.
    std::set<std::string, std::less<>> m_unstored;
};

} // namespace kestrove
