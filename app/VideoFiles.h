// Which files the screen takes as its video.
#pragma once

#include <QUrl>
#include <optional>
#include <string>
#include <vector>

#include "platform/desktop/FilePanels.h"

namespace korvane {

/// MPEG-4 and QuickTime movies, in the order in which the panel offers them.
const std::vector<PanelFileType>& videoFileTypes();

/// Why something that was dropped or named can't be the video; none when it can. Looks at the file itself:
/// it must be local, regular, readable and of one of the types above or a kind of them.
/// \return one sentence that names the file and says what helps.
std::optional<std::string> reasonAgainstVideo(const QUrl& url);

/// Why several files dropped together are not taken, and what helps.
std::string severalFilesSentence();

}  // namespace korvane
