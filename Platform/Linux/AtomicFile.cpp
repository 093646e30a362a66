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

// Bytes. Nothing that is small enough to be replaced as a whole comes near; what does is something
// else under our name.
constexpr off_t largestContent = 16L << 20;

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

/// Where symbolic links lead, whether a file is there or not.
std::expected<std::filesystem::path, std::error_code> followed(std::filesystem::path path) {
    // As many as the kernel follows.
    for (int links = 0; links < 40; ++links) {
        std::error_code notALink;
        const auto next = std::filesystem::read_symlink(path, notALink);
        if (notALink)
            return path;
        // An absolute one takes the place of the whole.
        path = path.parent_path() / next;
    }
    return std::unexpected(std::make_error_code(std::errc::too_many_symbolic_link_levels));
}

/// Pipes and devices would block or never end, and replacing them would break more than us.
std::error_code refusedKind(const struct stat& status) {
    if (S_ISDIR(status.st_mode))
        return std::make_error_code(std::errc::is_a_directory);
    return S_ISREG(status.st_mode) ? std::error_code()
                                   : std::make_error_code(std::errc::invalid_argument);
}

/// The permissions that a file in place of `replaced` has to have. Replacing needs only the folder;
/// but who made a file read-only wants it to stay as it is, also from the superuser.
std::expected<mode_t, std::error_code> modeInPlaceOf(const std::filesystem::path& replaced) {
    struct stat status{};
    if (::stat(replaced.c_str(), &status) != 0)
        return errno == ENOENT ? std::expected<mode_t, std::error_code>(newFileMode)
                               : std::unexpected(lastError());
    if (const auto error = refusedKind(status))
        return std::unexpected(error);
    constexpr mode_t writableForAnybody = 0222;
    if ((status.st_mode & writableForAnybody) == 0 || ::access(replaced.c_str(), W_OK) != 0)
        return std::unexpected(std::make_error_code(std::errc::permission_denied));
    return status.st_mode & 07777;
}

std::error_code writeTemporary(const std::filesystem::path& temporary, mode_t mode,
                               std::string_view content) {
    const File file(temporary, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW, newFileMode);
    if (!file.isOpen() || ::fchmod(file.descriptor(), mode) != 0)
        return lastError();
    return writeAll(file, content);
}

} // namespace

std::expected<std::string, std::error_code> read(const std::filesystem::path& path) {
    // Opening a pipe would wait for somebody to write into it.
    const File file(path, O_RDONLY | O_NONBLOCK);
    struct stat status{};
    if (!file.isOpen() || ::fstat(file.descriptor(), &status) != 0)
        return std::unexpected(lastError());
    if (const auto error = refusedKind(status))
        return std::unexpected(error);
    if (status.st_size > largestContent)
        return std::unexpected(std::make_error_code(std::errc::file_too_large));
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
    const auto target = followed(path);
    if (!target)
        return target.error();
    if (const auto error = makeFolder(target->parent_path()))
        return error;
    const auto mode = modeInPlaceOf(*target);
    if (!mode)
        return mode.error();
    // The process in the name: two of us must not write into one temporary file. What a killed
    // process of that number left behind is written over.
    const std::filesystem::path temporary =
        fmt::format("{}.{}.new", target->native(), static_cast<long>(::getpid()));
    auto error = writeTemporary(temporary, *mode, content);
    if (!error && ::rename(temporary.c_str(), target->c_str()) != 0)
        error = lastError();
    if (error) {
        ::unlink(temporary.c_str());
        return error;
    }
    // Some file systems cannot do this; the file itself is safe and in place.
    const File folder(target->parent_path(), O_RDONLY | O_DIRECTORY);
    if (folder.isOpen())
        ::fsync(folder.descriptor());
    return {};
}

} // namespace kestrove::AtomicFile
