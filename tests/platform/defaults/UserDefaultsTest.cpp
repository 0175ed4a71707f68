#include "platform/defaults/UserDefaults.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <csignal>
#include <memory>

#include "platform/defaults/DeferredUserDefaults.h"
#include "platform/defaults/FileUserDefaults.h"
#include "platform/defaults/MemoryUserDefaults.h"

namespace korvane {
namespace {

/// Files of this process can't grow beyond so many bytes: what a full disk looks like to it.
class FullDisk {
  public:
    explicit FullDisk(rlim_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &before_);
        const rlimit tight{bytes, before_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &tight);
    }
    ~FullDisk() {
        setrlimit(RLIMIT_FSIZE, &before_);
        std::signal(SIGXFSZ, handler_);
    }
    FullDisk(const FullDisk&) = delete;
    FullDisk& operator=(const FullDisk&) = delete;

  private:
    rlimit before_{};
    void (*handler_)(int);
};

/// Not the administrator, who may write anywhere.
class OrdinaryUser {
  public:
    OrdinaryUser() {
        if (before_ == 0)
            wasChanged_ = seteuid(65534) == 0;
    }
    ~OrdinaryUser() {
        if (wasChanged_ && seteuid(before_) != 0)
            std::abort();
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

  private:
    uid_t before_ = geteuid();
    bool wasChanged_ = false;
};

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

/// Asked while what was given may still be on its way.
struct DeferredKind : FileKind {
    std::unique_ptr<UserDefaults> disk = FileKind::make();
    std::unique_ptr<UserDefaults> make() override { return std::make_unique<DeferredUserDefaults>(*disk); }
};

template <typename Kind>
class UserDefaultsContract : public ::testing::Test {
  protected:
    Kind kind;
    std::unique_ptr<UserDefaults> store = kind.make();
};

using Kinds = ::testing::Types<MemoryKind, FileKind, DeferredKind>;
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

TEST_F(FileUserDefaultsTest, aFullDiskLeavesTheOldValueAndNothingBesideIt) {
    ASSERT_TRUE(store.setData("the old value", "key"));
    {
        const FullDisk disk(16);
        EXPECT_FALSE(store.setData(QByteArray(4096, 'x'), "key"));
        EXPECT_FALSE(store.setData(QByteArray(4096, 'x'), "never stored before"));
    }
    EXPECT_EQ(store.data("key"), QByteArray("the old value"));
    EXPECT_EQ(store.data("never stored before"), std::nullopt);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);
    EXPECT_TRUE(store.setData(QByteArray(4096, 'x'), "key")) << "once there is room again";
}

TEST_F(FileUserDefaultsTest, aFolderThatMayOnlyBeReadKeepsItsValues) {
    ASSERT_TRUE(store.setData("the old value", "key"));
    ASSERT_EQ(chmod(store.fileFor("key").toUtf8().constData(), 0644), 0);
    ASSERT_EQ(chmod(folder.path().toUtf8().constData(), 0555), 0);
    {
        const OrdinaryUser user;
        EXPECT_FALSE(store.setData("a new one", "key"));
        EXPECT_FALSE(store.setData("a new one", "another"));
        EXPECT_EQ(store.data("key"), QByteArray("the old value"));
    }
    ASSERT_EQ(chmod(folder.path().toUtf8().constData(), 0755), 0);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files).size(), 1);
}

TEST_F(FileUserDefaultsTest, aLinkStaysALinkAndWhatItPointsToIsReplaced) {
    QTemporaryDir elsewhere;
    const QString target = elsewhere.filePath(QStringLiteral("kept-elsewhere.json"));
    ASSERT_TRUE(store.setData("old", "key"));
    ASSERT_TRUE(QFile::rename(store.fileFor("key"), target));
    ASSERT_TRUE(QFile::link(target, store.fileFor("key")));
    EXPECT_TRUE(store.setData("new", "key"));
    EXPECT_TRUE(QFileInfo(store.fileFor("key")).isSymLink());
    QFile file(target);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("new"));
}

TEST_F(FileUserDefaultsTest, aReplacedFileKeepsItsPermissions) {
    ASSERT_TRUE(store.setData("old", "key"));
    const QString file = store.fileFor("key");
    EXPECT_FALSE(QFile::permissions(file) & QFile::ReadOther) << "a new one is for its user";
    ASSERT_EQ(chmod(file.toUtf8().constData(), 0644), 0);
    ASSERT_TRUE(store.setData("new", "key"));
    EXPECT_TRUE(QFile::permissions(file) & QFile::ReadOther);
}

}  // namespace
}  // namespace korvane
