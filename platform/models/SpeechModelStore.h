// The models on this machine: those in the person's own folder and those that the system has for everyone.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

#include "platform/folders/StandardFolders.h"
#include "platform/models/SpeechModelCatalogue.h"

namespace korvane {

struct InstalledSpeechModel {
    std::string id;    ///< the catalogue's, else made of the file's name
    std::string name;  ///< the catalogue's, else "Whisper" and the id
    std::filesystem::path file;
    std::uint64_t bytes = 0;
    std::uint64_t memoryBytes = 0;
    double operationsPerSecond = 0;
    bool own = false;  ///< in the person's folder, so it can be removed
};

/// A model that tells voices from other sounds, for use beside one that recognises.
struct InstalledVoiceModel {
    std::string id;  ///< made of the file's name
    std::filesystem::path file;
    std::uint64_t bytes = 0;
    bool own = false;  ///< in the person's folder, so it can be removed
};

/// A file among the models that can't be used: cut off while it was copied, damaged, for English only.
struct UnusableModelFile {
    std::string id;    ///< the catalogue's, else made of the file's name
    std::string name;  ///< the catalogue's, else the file's
    std::filesystem::path file;
    std::string reason;   ///< one sentence
    bool listed = false;  ///< in the catalogue under this id, so it can be downloaded again
    bool own = false;     ///< in the person's folder, so it can be removed
};

/// A value that holds no state of its own: each call looks at the disk, so that what another window or
/// command does is seen. Any thread; two at once are safe, in two processes too.
class SpeechModelStore {
  public:
    /// Loads the catalogue.
    explicit SpeechModelStore(StandardFolders folders);
    SpeechModelStore(StandardFolders folders, SpeechModelCatalogue catalogue);

    const SpeechModelCatalogue& catalogue() const { return catalogue_; }

    /// The person's own: korvane/models/whisper in the data folder. It need not exist.
    /// \throws ModelError when nobody has named a data folder, not even by a home.
    std::filesystem::path folder() const;

    /// Whole multilingual models, from the one that takes the least work to the one that takes the most. The
    /// person's own hides one of the system's with the same file name. No two models of any kind have the
    /// same id.
    std::vector<InstalledSpeechModel> installed() const;
    /// The other model files there, without those whose id a whole model has.
    std::vector<UnusableModelFile> unusable() const;
    /// Whole models that tell voices from other sounds, the person's own first; the first is the one that is
    /// used. None of them is among the others, and none can be chosen to recognise.
    std::vector<InstalledVoiceModel> voiceModels() const;
    std::optional<InstalledSpeechModel> find(std::string_view id) const;
    std::optional<UnusableModelFile> findUnusable(std::string_view id) const;

    /// What a person means by an installed model's id, else by the name of a model file anywhere.
    /// \throws ModelError when it is neither, or can't be used.
    InstalledSpeechModel resolve(const std::string& idOrFile) const;

    /// Copies a file that the person has into the own folder. A file with a known digest gets its own name
    /// there, another keeps the one that it has; an older one of the same name is replaced. Appears only when
    /// it is whole. A voice model is taken in too, and described by what an InstalledVoiceModel has.
    /// \param progress  called on this thread with the share that is done, 0 to 1; may be null.
    /// \throws ModelError, CancellationError; then nothing has changed.
    InstalledSpeechModel add(const std::filesystem::path& file, const std::stop_token& stop = {},
                             const std::function<void(double)>& progress = {}) const;

    /// Removes one of the person's own, usable or not, and what was begun of a download of it.
    /// \throws ModelError when there is none, it is the system's, or the folder can't be written to.
    void remove(std::string_view id) const;

    /// The model that recognises: the one that was chosen, while it is installed; else the best one that fits
    /// into this machine's memory; none when none is installed.
    std::optional<InstalledSpeechModel> inUse() const;
    /// Chooses it, for this and later runs. \throws ModelError when it isn't installed, can't be used, or the
    /// choice can't be kept.
    void use(const std::string& id) const;
    /// For a model that somebody has just got, as it was got to be used: chooses it if it recognises. A
    /// choice that can't be kept is no reason to call the model missing.
    void useFromNow(const std::string& id) const;

  private:
    StandardFolders folders_;
    SpeechModelCatalogue catalogue_;
};

}  // namespace korvane
