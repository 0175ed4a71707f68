// The store without a disk: gone with the object. For tests, and for runs that must not touch the user's own.
#pragma once

#include <map>

#include "platform/defaults/UserDefaults.h"

namespace korvane {

class MemoryUserDefaults : public UserDefaults {
  public:
    std::optional<QByteArray> data(const std::string& key) const override;
    bool setData(const QByteArray& data, const std::string& key) override;
    bool remove(const std::string& key) override;

  private:
    std::map<std::string, QByteArray> values_;
};

}  // namespace korvane
