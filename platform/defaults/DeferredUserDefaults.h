// A store that doesn't keep its user waiting: what it is given stands there at once for whoever asks, and
// comes into another store on a thread of its own.
//
// Replacing a file waits for its bytes to be on their way to the disk, 7 ms on the usual file system and
// several frames on a busy disk: too long for the thread that draws while a slider is being dragged.
#pragma once

#include <condition_variable>
#include <map>
#include <mutex>
#include <stop_token>
#include <thread>
#include <utility>

#include "platform/defaults/UserDefaults.h"

namespace korvane {

class DeferredUserDefaults : public UserDefaults {
  public:
    /// \param store  must outlive this; nobody else uses it meanwhile.
    explicit DeferredUserDefaults(UserDefaults& store) : store_(store) {}
    /// Waits until everything is stored.
    ~DeferredUserDefaults() override;

    std::optional<QByteArray> data(const std::string& key) const override;
    /// \return true: whether it can be stored shows later, and then nobody is told. Of values that follow
    /// each other quicker than the store takes them, the last one counts.
    bool setData(const QByteArray& data, const std::string& key) override;
    bool remove(const std::string& key) override;

    /// Waits until everything that was given so far is stored.
    void flush();

  private:
    using Value = std::optional<QByteArray>;  ///< none: to be removed

    void put(const std::string& key, Value value);
    void storeAll(const std::stop_token& stop);

    UserDefaults& store_;
    mutable std::mutex storeMutex_;  ///< held while the store is used; before `mutex_`
    mutable std::mutex mutex_;
    std::condition_variable_any changed_;
    std::map<std::string, Value> waiting_;
    std::optional<std::pair<std::string, Value>> onItsWay_;  ///< no longer waits, isn't stored yet
    std::jthread worker_;                                    ///< from the first change on
};

}  // namespace korvane
