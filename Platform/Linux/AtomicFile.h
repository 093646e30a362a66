#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>
#include <system_error>

/// A small file that is replaced as a whole: a reader, and whoever comes after a crash or a power
/// cut, sees either the old content or the new one.
namespace kestrove::AtomicFile {

/// The whole content; `no_such_file_or_directory` when there is none. Never waits: an error for
/// what is no regular file, and for one of more than 16 MiB.
[[nodiscard]] std::expected<std::string, std::error_code> read(const std::filesystem::path& path);

/// Makes the folder (for the user only) and the file when they are missing, keeps the permissions
/// of a file that is there, and follows a symbolic link instead of replacing it. What returned
/// without an error is on the disk; what returned with one has left the old content.
[[nodiscard]] std::error_code write(const std::filesystem::path& path, std::string_view content);

} // namespace kestrove::AtomicFile
