// A download that isn't whole yet: "<name>.part" in the folder of models, and "<name>.part.json" beside it
// with which version of which address it is a part of.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <stop_token>
#include <string>

#include "platform/models/Digest.h"
#include "platform/models/FileHandle.h"
#include "platform/models/SpeechModel.h"

namespace korvane {

/// Held by one download at a time, in whatever process. Lives on the thread that downloads.
class PartFile {
  public:
    /// Opens what an earlier download left, or begins a new one.
    /// \throws ModelError when somebody else is downloading it, or the folder can't be written to.
    PartFile(const SpeechModel& model, const std::filesystem::path& folder);
    PartFile(const PartFile&) = delete;
    PartFile& operator=(const PartFile&) = delete;
    /// What could go on later stays; an empty part goes.
    ~PartFile();

    std::uint64_t bytes() const { return bytes_; }
    /// What the server called the version that this is a part of, for If-Range; empty when it said nothing.
    const std::string& version() const { return version_; }

    /// Reads what is there, so that only what comes is read from now on.
    /// \param progress  called with the bytes read so far.
    void digestWhatIsThere(const std::stop_token& stop, const std::function<void(std::uint64_t)>& progress);
    /// Empties it. \param version  of what comes now.
    void startAnew(const std::string& version);
    /// \throws FullDiskError (then what was there has been removed), ModelError
    void append(std::span<const std::byte> bytes);
    /// 64 hexadecimal digits of all of it; ends what can be appended.
    std::string digest() { return digest_.finish(); }
    /// Gives it its name, safely on the disk. \return the file.
    std::filesystem::path complete();
    void discard();

  private:
    void open();
    void readVersion();

    const SpeechModel& model_;
    std::filesystem::path folder_;
    std::filesystem::path path_;
    FileHandle handle_;
    std::uint64_t bytes_ = 0;
    std::uint64_t settling_ = 0;  ///< up to here the disk has been told to write
    std::string version_;
    Sha256 digest_;
};

}  // namespace korvane
