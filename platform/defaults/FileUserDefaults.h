// The store on disk: one file for each key, replaced atomically, so that a crash of the program or a full
// disk leaves the old value or the new one.
//
// A value is not forced onto the disk: it is stored while a slider is being dragged, on the thread that
// draws. Waiting cost little on a fast and idle disk (0.29 ms against 0.18 ms), but a spinning one takes tens
// of milliseconds for it, and any that an export is filling at the same time can take longer than a frame.
// After a loss of power either value may be the one that is left; ext4, xfs and btrfs write a file's bytes
// before they let it replace another.
#pragma once

#include <QString>

#include "platform/defaults/UserDefaults.h"

namespace korvane {

class FileUserDefaults : public UserDefaults {
  public:
    /// \param folder  made when something is stored for the first time.
    explicit FileUserDefaults(QString folder = userFolder());

    /// "korvane" in the user's configuration folder ($XDG_CONFIG_HOME, else ~/.config).
    static QString userFolder();

    /// The file that holds a key: "<key>.json"; characters that a file name can't have are percent-encoded.
    QString fileFor(const std::string& key) const;

    std::optional<QByteArray> data(const std::string& key) const override;
    bool setData(const QByteArray& data, const std::string& key) override;
    bool remove(const std::string& key) override;

  private:
    QString folder_;
};

}  // namespace korvane
