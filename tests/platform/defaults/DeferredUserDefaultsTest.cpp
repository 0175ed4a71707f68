#include "platform/defaults/DeferredUserDefaults.h"

#include <gtest/gtest.h>

#include <future>
#include <vector>

#include "platform/defaults/MemoryUserDefaults.h"

namespace korvane {
namespace {

/// A disk that takes its time: each change waits until it is let through.
class SlowStore : public UserDefaults {
  public:
    std::optional<QByteArray> data(const std::string& key) const override { return stored_.data(key); }
    bool setData(const QByteArray& data, const std::string& key) override {
        wait();
        taken.push_back(data);
        return stored_.setData(data, key);
    }
    bool remove(const std::string& key) override {
        wait();
        return stored_.remove(key);
    }

    void letThrough() { isOpen_.set_value(); }
    void untilAsked() { asked_.get_future().wait(); }

    std::vector<QByteArray> taken;

  private:
    void wait() {
        if (!wasAsked_)
            asked_.set_value();
        wasAsked_ = true;
        open_.wait();
    }

    MemoryUserDefaults stored_;
    std::promise<void> isOpen_;
    std::shared_future<void> open_ = isOpen_.get_future().share();
    std::promise<void> asked_;
    bool wasAsked_ = false;
};

TEST(DeferredUserDefaults, keepNobodyWaitingForTheDisk) {
    SlowStore disk;
    DeferredUserDefaults store(disk);
    EXPECT_TRUE(store.setData("first", "other"));
    disk.untilAsked();
    // All of it would wait for ever.
    EXPECT_EQ(store.data("other"), QByteArray("first"));
    EXPECT_TRUE(store.setData("value", "key"));
    EXPECT_EQ(store.data("key"), QByteArray("value"));
    EXPECT_TRUE(store.remove("key"));
    EXPECT_EQ(store.data("key"), std::nullopt);
    disk.letThrough();
}

TEST(DeferredUserDefaults, storeTheLastOfManyValuesThatCameMeanwhile) {
    SlowStore disk;
    DeferredUserDefaults store(disk);
    store.setData("0", "key");
    disk.untilAsked();
    for (int i = 1; i <= 100; ++i)
        store.setData(QByteArray::number(i), "key");
    disk.letThrough();
    store.flush();
    EXPECT_EQ(disk.taken, (std::vector<QByteArray>{"0", "100"}));
}

TEST(DeferredUserDefaults, haveStoredEverythingWhenTheyGo) {
    MemoryUserDefaults disk;
    {
        DeferredUserDefaults store(disk);
        for (int i = 0; i < 100; ++i)
            store.setData("value", std::to_string(i));
        store.remove("7");
    }
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(disk.data(std::to_string(i)).has_value(), i != 7) << i;
}

TEST(DeferredUserDefaults, showWhatIsThereFromBefore) {
    MemoryUserDefaults disk;
    disk.setData("before", "key");
    const DeferredUserDefaults store(disk);
    EXPECT_EQ(store.data("key"), QByteArray("before"));
}

}  // namespace
}  // namespace korvane
