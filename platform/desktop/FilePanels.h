// The desktop's panels for choosing a file to open and a place to save. Main thread only.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace korvane {

/// A kind of file as a panel offers it. Export sessions have a FileType of their own.
struct PanelFileType {
    std::string mimeType;     ///< e.g. "video/mp4"
    std::string suffix;       ///< the usual one, without its dot, e.g. "mp4"
    std::string description;  ///< e.g. "MPEG-4 movie"
    friend bool operator==(const PanelFileType&, const PanelFileType&) = default;
};

/// One file, no folders.
struct OpenPanelRequest {
    std::string title;
    std::vector<PanelFileType> allowedTypes;
    friend bool operator==(const OpenPanelRequest&, const OpenPanelRequest&) = default;
};

struct SavePanelRequest {
    std::string title;
    std::vector<PanelFileType> allowedTypes;  ///< the first one's suffix is added to a name without one
    std::string proposedName;
    bool canCreateFolders = true;
    friend bool operator==(const SavePanelRequest&, const SavePanelRequest&) = default;
};

class FilePanels {
  public:
    virtual ~FilePanels() = default;

    /// Shows the panel and returns when the person is done with it; the event loop runs meanwhile.
    /// \return the file chosen by OK; none when the panel was cancelled.
    virtual std::optional<std::filesystem::path> runOpenPanel(const OpenPanelRequest& request) = 0;

    /// As runOpenPanel(); asks before an existing file is chosen.
    virtual std::optional<std::filesystem::path> runSavePanel(const SavePanelRequest& request) = 0;
};

}  // namespace korvane
