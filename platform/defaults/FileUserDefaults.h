// The store on disk: one file for each key, replaced atomically, so that a crash of the program or a full
// disk leaves the old value or the new one.
//
// A value is not forced onto the disk, for which a spinning one takes tens of milliseconds, and any that an
// export is filling at the same time can take longer than a frame. Without that it took 7 ms on an ext4 disk,
// up to 87 ms on a busy one: who draws stores through a DeferredUserDefaults. After a loss of power either
// value may be the one that is left; ext4, xfs and btrfs write a file's bytes before they let it replace
// another.
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
