// A file that has no name until it is complete.
#pragma once

#include <filesystem>
#include <string>

namespace korvane {

/// Holds the data on the destination's file system. Where the system can, without any name, so that nothing
/// is left even when the process is killed; elsewhere under a hidden temporary name beside the destination,
/// removed with this object.
class OutputFile {
  public:
    /// \throws MediaError when the folder is missing, not writable, or the destination is a folder.
    explicit OutputFile(std::filesystem::path destination);
    ~OutputFile();
    OutputFile(const OutputFile&) = delete;
    OutputFile& operator=(const OutputFile&) = delete;

    /// A path under which this process can open the data for reading and writing meanwhile.
    const std::string& workingPath() const { return workingPath_; }
    const std::filesystem::path& destination() const { return destination_; }

    /// Gives the data its name, replacing a file of that name in one step. \throws MediaError; then nothing
    /// changed.
    void publish();

  private:
    std::filesystem::path hiddenSibling() const;
    [[noreturn]] void fail(int systemError) const;

    std::filesystem::path destination_;
    std::filesystem::path temporary_;  ///< empty: nameless
    std::string workingPath_;
    int descriptor_ = -1;
};

}  // namespace korvane
