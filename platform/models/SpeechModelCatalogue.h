// The models that can be downloaded, and those that are recognised when a person has them already. The list
// is data: built into the program, and replaced by a file of the person's or of the system's administrator.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/folders/StandardFolders.h"
#include "platform/models/SpeechModel.h"

namespace korvane {

/// An immutable value.
class SpeechModelCatalogue {
  public:
    /// The list of the first of these that is there and whole: speech-models.json in the folder "korvane" of
    /// the person's configuration, then of the system's (XDG_CONFIG_DIRS), then the one that is built in. A
    /// damaged list is passed over and named by problem(). Reads files; never throws for what is in them.
    static SpeechModelCatalogue load(const StandardFolders& folders);

    static SpeechModelCatalogue builtIn();

    /// An object of
    /// - "mirror": the address of the folder in which the files lie; without "models" the built-in models are
    ///   fetched from there;
    /// - "models": objects of "id", "name", "file", "sha256", "bytes", "memory" (bytes), "operations" (for a
    ///   second of sound), if wanted "address" (instead of the file in the mirror's folder) and "offered".
    /// \param source  what the sentence of an error calls it.
    /// \throws ModelError naming the entry and what is wrong with it.
    static SpeechModelCatalogue parse(const std::string& source, std::string_view json);

    /// Those that a person is offered, from the smallest to the best.
    std::vector<SpeechModel> offered() const;
    /// Those and the ones that are only known.
    const std::vector<SpeechModel>& known() const& { return models_; }
    std::vector<SpeechModel> known() && { return std::move(models_); }

    /// \return null when there is none; lives as long as this.
    const SpeechModel* find(std::string_view id) const;
    const SpeechModel* findByDigest(std::string_view sha256) const;

    /// A sentence about a list that could not be used; empty when all is well.
    const std::string& problem() const { return problem_; }

  private:
    std::vector<SpeechModel> models_;
    std::string problem_;
};

}  // namespace korvane
