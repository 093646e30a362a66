#include "Platform/Linux/AtomicFile.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace kestrove::AtomicFile {

namespace {

class File {
public:
    File(const std::filesystem::path& path, int flags, mode_t mode = 0)
        : m_descriptor(::open(path.c_str(), flags | O_CLOEXEC, mode)) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() {
        if (m_descriptor >= 0)
            ::close(m_descriptor);
    }

    [[nodiscard]] bool isOpen() const { return m_descriptor >= 0; }
    [[nodiscard]] int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

std::error_code lastError() {
    return {errno, std::generic_category()};
}

// The user's settings are the user's own affair.
constexpr mode_t newFileMode = 0600;

std::error_code makeFolder(const std::filesystem::path& folder) {
    if (folder.empty())
        return std::make_error_code(std::errc::no_such_file_or_directory);
    if (::mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST)
        return {};
    if (errno != ENOENT || !folder.has_relative_path())
        return lastError();
    if (const auto error = makeFolder(folder.parent_path()))
        return error;
    return ::mkdir(folder.c_str(), 0700) == 0 || errno == EEXIST ? std::error_code() : lastError();
}

std::error_code writeAll(const File& file, std::string_view content) {
    while (!content.empty()) {
        const auto written = ::write(file.descriptor(), content.data(), content.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return lastError();
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return ::fsync(file.descriptor()) == 0 ? std::error_code() : lastError();
}

std::error_code writeTemporary(const std::filesystem::path& temporary,
                               const std::filesystem::path& replaced, std::string_view content) {
    const File file(temporary, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, newFileMode);
    if (!file.isOpen())
        return lastError();
    struct stat status{};
    if (::stat(replaced.c_str(), &status) == 0 &&
        ::fchmod(file.descriptor(), status.st_mode & 07777) != 0)
        return lastError();
    return writeAll(file, content);
}

} // namespace

std::expected<std::string, std::error_code> read(const std::filesystem::path& path) {
    const File file(path, O_RDONLY);
    if (!file.isOpen())
        return std::unexpected(lastError());
    std::string content;
    std::array<char, 4096> buffer{};
    while (true) {
        const auto count = ::read(file.descriptor(), buffer.data(), buffer.size());
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return std::unexpected(lastError());
        if (count == 0)
            return content;
        content.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

std::error_code write(const std::filesystem::path& path, std::string_view content) {
    if (const auto error = makeFolder(path.parent_path()))
        return error;
    std::error_code unresolved;
    const auto resolved = std::filesystem::weakly_canonical(path, unresolved);
    const auto& target = unresolved ? path : resolved;
    // The process in the name: two of us must not write into one temporary file. What a killed
    // process of that number left behind is written over.
    const std::filesystem::path temporary =
        fmt::format("{}.{}.new", target.native(), static_cast<long>(::getpid()));
    auto error = writeTemporary(temporary, target, content);
    if (!error && ::rename(temporary.c_str(), target.c_str()) != 0)
        error = lastError();
    if (error) {
        ::unlink(temporary.c_str());
        return error;
    }
    // Some file systems cannot do this; the file itself is safe and in place.
    const File folder(target.parent_path(), O_RDONLY | O_DIRECTORY);
    if (folder.isOpen())
        ::fsync(folder.descriptor());
    return {};
}

} // namespace kestrove::AtomicFile
