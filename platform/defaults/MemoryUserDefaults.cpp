#include "platform/defaults/MemoryUserDefaults.h"

namespace korvane {

std::optional<QByteArray> MemoryUserDefaults::data(const std::string& key) const {
    const auto found = values_.find(key);
    if (found == values_.end())
        return std::nullopt;
    return found->second;
}

bool MemoryUserDefaults::setData(const QByteArray& data, const std::string& key) {
    values_.insert_or_assign(key, data);
    return true;
}

bool MemoryUserDefaults::remove(const std::string& key) {
    values_.erase(key);
    return true;
}

}  // namespace korvane
