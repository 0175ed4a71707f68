// Owns a file descriptor, and speaks of its failures as a person reads them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>

namespace korvane {

/// "Permission denied" of an error number.
std::string systemReason(int error);

/// Closes at its end; a negative number owns nothing.
class FileHandle {
  public:
    explicit FileHandle(int number = -1) : number_(number) {}
    ~FileHandle();
    FileHandle(FileHandle&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    FileHandle& operator=(FileHandle&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    int get() const { return number_; }
    explicit operator bool() const { return number_ >= 0; }

    /// \param file  names it in errors, here and below.
    /// \throws ModelError when it is a folder, a pipe, or something else that is no file.
    std::uint64_t regularFileBytes(const std::filesystem::path& file) const;
    /// \return how many bytes were read; 0 at the end of the file.
    std::size_t readAt(void* bytes, std::size_t count, std::uint64_t position,
                       const std::filesystem::path& file) const;
    /// Writes all of it where the file ends or where it stands.
    void writeAll(const void* bytes, std::size_t count, const std::filesystem::path& file) const;

  private:
    int number_;
};

/// \throws ModelError
FileHandle openForReading(const std::filesystem::path& file);

/// Makes the folder and those above it. \throws ModelError
void makeFolder(const std::filesystem::path& folder);

/// \throws ModelError when a file of `bytes` bytes more would not fit beside the others in `folder`.
void requireRoom(const std::filesystem::path& folder, std::uint64_t bytes);

/// A name that was just given in `folder` outlasts a loss of power, where the file system can do that.
void settleNames(const std::filesystem::path& folder);

}  // namespace korvane
