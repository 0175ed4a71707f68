#include "platform/av/KeptPictures.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/ffmpeg/CanvasPictures.h"

namespace korvane {

KeptPictures::Canvas KeptPictures::find(MediaTime t) const {
    const auto after = stretches_.upper_bound(t);
    if (after == stretches_.begin())
        return nullptr;
    const auto& pictures = std::prev(after)->second.pictures;
    const auto found = pictures.find(t);
    return found == pictures.end() ? nullptr : found->second;
}

bool KeptPictures::offer(MediaTime stretch, std::int64_t pictures, MediaTime t, Canvas canvas,
                         std::int64_t decoded) {
    const double worth = static_cast<double>(decoded) / static_cast<double>(pictures);
    auto place = stretches_.find(stretch);
    if (place == stretches_.end()) {
        const std::size_t bytes = bytesOf(*canvas) * static_cast<std::size_t>(pictures);
        if (!makeRoom(bytes, worth))
            return false;
        place = stretches_.emplace(stretch, Stretch{{}, bytes, worth}).first;
        bytes_ += bytes;
    }
    Stretch& kept = place->second;
    kept.worth = std::max(kept.worth, worth);
    if (std::ssize(kept.pictures) < pictures)
        kept.pictures.emplace(t, std::move(canvas));
    return kept.pictures.contains(t);
}

/// Lets go of stretches worth less; of none when that would not be enough.
bool KeptPictures::makeRoom(std::size_t bytes, double worth) {
    using Entry = decltype(stretches_)::iterator;
    std::vector<Entry> entries;
    for (auto i = stretches_.begin(); i != stretches_.end(); ++i)
        if (i->second.worth < worth)
            entries.push_back(i);
    std::ranges::sort(entries, {}, [](const Entry& e) { return e->second.worth; });
    std::size_t left = bytes_;
    auto last = entries.begin();
    for (; left + bytes > mostBytes_ && last != entries.end(); ++last)
        left -= (*last)->second.bytes;
    if (left + bytes > mostBytes_)
        return false;
    std::for_each(entries.begin(), last, [this](const Entry& e) { stretches_.erase(e); });
    bytes_ = left;
    return true;
}

void KeptPictures::clear() {
    stretches_.clear();
    bytes_ = 0;
}

}  // namespace korvane
