// A desktop that the test makes up: where its title buttons are, without a settings service.
#pragma once

#include <QTemporaryDir>
#include <filesystem>
#include <fstream>
#include <string>

#include "platform/desktop/DesktopSettings.h"

namespace korvane {

class MadeUpDesktop {
  public:
    /// \param layout  such as "close:menu"; empty: nothing is set.
    explicit MadeUpDesktop(const std::string& layout = "") : settings_(environment(layout)) {}

    DesktopSettings& settings() { return settings_; }

  private:
    DesktopEnvironment environment(const std::string& layout) const {
        const std::filesystem::path config = folder_.path().toStdString();
        if (!layout.empty()) {
            std::filesystem::create_directories(config / "gtk-4.0");
            std::ofstream(config / "gtk-4.0" / "settings.ini")
                << "[Settings]\ngtk-decoration-layout=" << layout << "\n";
        }
        return {config, "", false};
    }

    QTemporaryDir folder_;
    DesktopSettings settings_;
};

}  // namespace korvane
