// What is said to the desktop's services, on a bus of the test's own.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QDeadlineTimer>
#include <QProcess>
#include <QStandardPaths>
#include <functional>
#include <string>
#include <vector>

#include "platform/desktop/FileManager.h"
#include "platform/desktop/Notifications.h"

using namespace korvane;

namespace {

void runUntil(const std::function<bool()>& condition) {
    const QDeadlineTimer deadline(10'000);
    while (!condition()) {
        ASSERT_FALSE(deadline.hasExpired());
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 20);
    }
}

/// Takes every call that comes to its path, and answers or refuses it.
class Service final : public QDBusVirtualObject {
  public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override {
        calls.push_back(message);
        connection.send(refuses ? message.createErrorReply(QDBusError::Failed, QStringLiteral("no"))
                                : message.createReply(QVariantList{}));
        return true;
    }
    std::vector<QDBusMessage> calls;
    bool refuses = false;
};

class DesktopServices : public testing::Test {
  protected:
    void SetUp() override {
        const QString daemon = QStandardPaths::findExecutable(QStringLiteral("dbus-daemon"));
        ASSERT_FALSE(daemon.isEmpty());
        bus_.start(daemon, {QStringLiteral("--session"), QStringLiteral("--nofork"),
                            QStringLiteral("--print-address=1")});
        ASSERT_TRUE(bus_.waitForReadyRead(10'000));
        address_ = QString::fromLatin1(bus_.readLine()).trimmed();
    }
    void TearDown() override {
        for (const QString& name : names_)
            QDBusConnection::disconnectFromBus(name);
        bus_.kill();
        bus_.waitForFinished();
    }
    QDBusConnection connectAs(const QString& name) {
        names_ << name;
        return QDBusConnection::connectToBus(address_, name);
    }
    /// Registers `service_` under this name.
    void serve(const QString& name) {
        QDBusConnection connection = connectAs(QStringLiteral("service"));
        const QString path = QLatin1Char('/') + QString(name).replace(QLatin1Char('.'), QLatin1Char('/'));
        ASSERT_TRUE(connection.registerVirtualObject(path, &service_));
        ASSERT_TRUE(connection.registerService(name));
    }
    FileManager fileManager() {
        return FileManager(connectAs(QStringLiteral("client")), [this](const QUrl& folder) {
            opened_.push_back(folder.toString().toStdString());
        });
    }

    const QString manager_ = QStringLiteral("org.freedesktop.FileManager1");
    Service service_;
    std::vector<std::string> opened_;

  private:
    QProcess bus_;
    QString address_;
    QStringList names_;
};

TEST_F(DesktopServices, theFileManagerIsShownTheFile) {
    serve(manager_);
    fileManager().show("/videos/my reel ä #1.mp4");
    runUntil([this] { return !service_.calls.empty(); });
    const QDBusMessage& call = service_.calls.front();
    EXPECT_EQ(call.interface(), manager_);
    EXPECT_EQ(call.member(), QStringLiteral("ShowItems"));
    ASSERT_EQ(call.arguments().size(), 2);
    EXPECT_EQ(call.arguments().at(0).toStringList(),
              QStringList{QStringLiteral("file:///videos/my%20reel%20%C3%A4%20%231.mp4")});
    EXPECT_EQ(call.arguments().at(1).toString(), QString());
    QCoreApplication::processEvents();
    EXPECT_TRUE(opened_.empty());
}

TEST_F(DesktopServices, aFileManagerThatRefusesLeavesTheFolder) {
    serve(manager_);
    service_.refuses = true;
    fileManager().show("/videos/reel.mp4");
    runUntil([this] { return !opened_.empty(); });
    EXPECT_EQ(opened_, std::vector<std::string>{"file:///videos"});
}

TEST_F(DesktopServices, withoutAFileManagerTheFolderIsOpened) {
    fileManager().show("/videos/reel.mp4");
    EXPECT_TRUE(opened_.empty());  // nobody waits for the answer
    runUntil([this] { return !opened_.empty(); });
    EXPECT_EQ(opened_, std::vector<std::string>{"file:///videos"});
}

TEST_F(DesktopServices, withoutABusTheFolderIsOpenedAtOnce) {
    std::vector<QUrl> opened;
    FileManager(std::nullopt, [&](const QUrl& folder) { opened.push_back(folder); }).show("/a/b.mp4");
    EXPECT_EQ(opened, std::vector<QUrl>{QUrl(QStringLiteral("file:///a"))});
}

TEST_F(DesktopServices, aNotificationSaysWhatItIsAbout) {
    serve(QStringLiteral("org.freedesktop.Notifications"));
    Notifications notifications(connectAs(QStringLiteral("client")));
    notifications.show(QStringLiteral("Export complete"), QStringLiteral("a <b> & c.mp4"));
    runUntil([this] { return !service_.calls.empty(); });
    const QDBusMessage& call = service_.calls.front();
    EXPECT_EQ(call.member(), QStringLiteral("Notify"));
    EXPECT_EQ(call.signature(), QStringLiteral("susssasa{sv}i"));
    EXPECT_EQ(call.arguments().at(3).toString(), QStringLiteral("Export complete"));
    EXPECT_EQ(call.arguments().at(4).toString(), QStringLiteral("a &lt;b&gt; &amp; c.mp4"));
}

TEST_F(DesktopServices, withoutNotificationsNothingHappens) {
    Notifications(std::nullopt).show(QStringLiteral("a"), QStringLiteral("b"));
    Notifications(connectAs(QStringLiteral("client"))).show(QStringLiteral("a"), QStringLiteral("b"));
    QCoreApplication::processEvents();
}

}  // namespace
