#include "platform/defaults/UserDefaults.h"

#include <gtest/gtest.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <memory>

#include "platform/defaults/FileUserDefaults.h"
#include "platform/defaults/MemoryUserDefaults.h"

namespace korvane {
namespace {

/// A store, and what it needs to live.
struct StoreKind {
    virtual ~StoreKind() = default;
    virtual std::unique_ptr<UserDefaults> make() = 0;
};

struct MemoryKind : StoreKind {
    std::unique_ptr<UserDefaults> make() override { return std::make_unique<MemoryUserDefaults>(); }
};

struct FileKind : StoreKind {
    QTemporaryDir folder;
    std::unique_ptr<UserDefaults> make() override {
        return std::make_unique<FileUserDefaults>(folder.filePath(QStringLiteral("not/yet/there")));
    }
};

template <typename Kind>
class UserDefaultsContract : public ::testing::Test {
  protected:
    Kind kind;
    std::unique_ptr<UserDefaults> store = kind.make();
};

using Kinds = ::testing::Types<MemoryKind, FileKind>;
TYPED_TEST_SUITE(UserDefaultsContract, Kinds);

TYPED_TEST(UserDefaultsContract, aFreshStoreHasNothing) {
    EXPECT_EQ(this->store->data("key"), std::nullopt);
}

TYPED_TEST(UserDefaultsContract, whatIsStoredIsReadBackByteForByte) {
    QByteArray bytes;
    for (int i = 0; i < 256; ++i)
        bytes.append(static_cast<char>(i));
    EXPECT_TRUE(this->store->setData(bytes, "key"));
    EXPECT_EQ(this->store->data("key"), bytes);
}

TYPED_TEST(UserDefaultsContract, emptyDataIsNotTheSameAsNone) {
    EXPECT_TRUE(this->store->setData({}, "key"));
    EXPECT_EQ(this->store->data("key"), QByteArray());
}

TYPED_TEST(UserDefaultsContract, aNewValueReplacesTheOldOneWhole) {
    EXPECT_TRUE(this->store->setData(QByteArray(1000, 'x'), "key"));
    EXPECT_TRUE(this->store->setData("short", "key"));
    EXPECT_EQ(this->store->data("key"), QByteArray("short"));
}

TYPED_TEST(UserDefaultsContract, keysAreApartWhateverTheirCharacters) {
    const std::vector<std::string> keys{"a",   "A", "a/b", "..", "../a",  ".",
                                        "a b", "ä", "%2F", "/",  "a:b*?", ""};
    for (const auto& key : keys)
        EXPECT_TRUE(this->store->setData(QByteArray::fromStdString("value of " + key), key)) << key;
    for (const auto& key : keys)
        EXPECT_EQ(this->store->data(key), QByteArray::fromStdString("value of " + key)) << key;
}

TYPED_TEST(UserDefaultsContract, removingLeavesNothingAndMayBeRepeated) {
    this->store->setData("value", "key");
    this->store->setData("other", "kept");
    EXPECT_TRUE(this->store->remove("key"));
    EXPECT_EQ(this->store->data("key"), std::nullopt);
    EXPECT_TRUE(this->store->remove("key"));
    EXPECT_EQ(this->store->data("kept"), QByteArray("other"));
}

class FileUserDefaultsTest : public ::testing::Test {
  protected:
    QTemporaryDir folder;
    FileUserDefaults store{folder.path()};
};

TEST_F(FileUserDefaultsTest, aKeyIsAFileThatANewStoreReads) {
    ASSERT_TRUE(store.setData("{}", "subtitleSettings_v1"));
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files),
              QStringList(QStringLiteral("subtitleSettings_v1.json")));
    EXPECT_EQ(FileUserDefaults(folder.path()).data("subtitleSettings_v1"), QByteArray("{}"));
}

TEST_F(FileUserDefaultsTest, itStandsInTheUsersConfigurationFolder) {
    const QByteArray before = qgetenv("XDG_CONFIG_HOME");
    qputenv("XDG_CONFIG_HOME", folder.path().toUtf8());
    const QString found = FileUserDefaults::userFolder();
    before.isNull() ? qunsetenv("XDG_CONFIG_HOME") : qputenv("XDG_CONFIG_HOME", before);
    EXPECT_EQ(found, folder.path() + QStringLiteral("/korvane"));
}

TEST_F(FileUserDefaultsTest, whereNoFolderCanBeMadeNothingIsStoredAndItSaysSo) {
    const QString file = folder.filePath(QStringLiteral("file"));
    QFile blocking(file);
    ASSERT_TRUE(blocking.open(QIODevice::WriteOnly));
    FileUserDefaults blocked(file + QStringLiteral("/below"));
    EXPECT_FALSE(blocked.setData("value", "key"));
    EXPECT_EQ(blocked.data("key"), std::nullopt);
}

TEST_F(FileUserDefaultsTest, aFileThatCannotBeReplacedKeepsItsPlace) {
    // A folder of that name can't be replaced, not even by the system's administrator.
    const QString path = store.fileFor("key");
    ASSERT_TRUE(QDir().mkpath(path + QStringLiteral("/inside")));
    EXPECT_FALSE(store.setData("value", "key"));
    EXPECT_EQ(store.data("key"), std::nullopt);
    EXPECT_FALSE(store.remove("key"));
    EXPECT_TRUE(QFileInfo(path).isDir());
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList())
        << "no half-written file stays behind";
}

}  // namespace
}  // namespace korvane
