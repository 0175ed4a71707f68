// A PocketSphinx model on disk: which one serves a locale, and whether its files are whole. Standard library
// only, so that it works without the engine.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "platform/folders/StandardFolders.h"
#include "platform/locale/Locale.h"

namespace korvane {

/// The three parts of a model.
struct PocketSphinxModel {
    std::filesystem::path folder;
    std::filesystem::path acousticModel;  ///< folder with mdef and feat.params
    std::filesystem::path languageModel;  ///< n-grams, binary or text
    std::filesystem::path dictionary;     ///< words and their sounds
    int rateHz = 16000;                   ///< of the sound that it was trained with
    bool fromDistribution = false;

    /// Finds the parts in one model folder, as the distribution lays them out.
    /// \return empty when one of them is missing.
    static std::optional<PocketSphinxModel> inFolder(const std::filesystem::path& folder);

    /// Looks for files that were cut off while they were copied: the engine would crash on them.
    /// \throws RecognitionError naming the file.
    void check() const;
};

/// Where models are looked for.
class PocketSphinxModels {
  public:
    /// \param distribution  the folder that the distribution's model packages install into; may be empty.
    PocketSphinxModels(StandardFolders folders, std::filesystem::path distribution);

    /// The person's own model comes before the system's, and that before the distribution's. A locale is
    /// served by a folder of its own name only ("en-US" or "en-us"): another region's model mishears too
    /// much.
    std::optional<PocketSphinxModel> find(const Locale& locale) const;

    /// The folder into which a person would put a model for `locale`.
    std::filesystem::path personalFolder(const Locale& locale) const;

  private:
    StandardFolders folders_;
    std::filesystem::path distribution_;
};

}  // namespace korvane
