// A small keyed store for what the program remembers of its user between runs. Whoever is given one uses it
// from one thread at a time.
#pragma once

#include <QByteArray>
#include <optional>
#include <string>

namespace korvane {

class UserDefaults {
  public:
    virtual ~UserDefaults() = default;

    /// The bytes last stored under `key`; none when there are none or they can't be read.
    virtual std::optional<QByteArray> data(const std::string& key) const = 0;

    /// Replaces what stands under `key`, wholly or not at all.
    /// \return false when it could not be stored; what stood there before is then still there.
    virtual bool setData(const QByteArray& data, const std::string& key) = 0;

    /// \return true when nothing stands under `key` any more, also if nothing did before.
    virtual bool remove(const std::string& key) = 0;
};

}  // namespace korvane
