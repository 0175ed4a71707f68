#include "tests/platform/sound/PrivateSoundServer.h"

#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <csignal>

namespace korvane {

PrivateSoundServer::PrivateSoundServer() {
    const QByteArray folder = folder_.path().toUtf8();
    qputenv("HOME", folder);
    qputenv("XDG_RUNTIME_DIR", folder);
    qputenv("XDG_CONFIG_HOME", folder + "/config");
    qputenv("PULSE_RUNTIME_PATH", folder);
    qputenv("PULSE_SERVER", "unix:" + folder + "/native");
    qunsetenv("DBUS_SESSION_BUS_ADDRESS");
}

PrivateSoundServer::~PrivateSoundServer() {
    kill();
}

bool PrivateSoundServer::start() {
    QFile::remove(folder_.filePath(QStringLiteral("native")));
    QFile::remove(folder_.filePath(QStringLiteral("pid")));
    server_.setStandardOutputFile(QProcess::nullDevice());
    server_.setStandardErrorFile(QProcess::nullDevice());
    // Without "norewinds" the device's clock stands still for seconds.
    server_.start(
        QStringLiteral("pulseaudio"),
        {QStringLiteral("-n"), QStringLiteral("--daemonize=no"), QStringLiteral("--exit-idle-time=-1"),
         QStringLiteral("--disable-shm=yes"), QStringLiteral("-L"),
         QStringLiteral("module-native-protocol-unix auth-anonymous=1 socket=") +
             folder_.filePath(QStringLiteral("native")),
         QStringLiteral("-L"), QStringLiteral("module-null-sink sink_name=nul norewinds=1")});
    if (!server_.waitForStarted())
        return false;
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < 10'000) {
        QProcess asks;
        asks.start(QStringLiteral("pactl"), {QStringLiteral("info")});
        asks.waitForFinished();
        if (asks.exitCode() == 0)
            return true;
    }
    return false;
}

void PrivateSoundServer::kill() {
    server_.kill();
    server_.waitForFinished();
}

void PrivateSoundServer::halt() {
    ::kill(static_cast<pid_t>(server_.processId()), SIGSTOP);
}

void PrivateSoundServer::resume() {
    ::kill(static_cast<pid_t>(server_.processId()), SIGCONT);
}

QString PrivateSoundServer::ask(const QStringList& words) const {
    QProcess asks;
    asks.start(QStringLiteral("pactl"), words);
    asks.waitForFinished();
    return QString::fromUtf8(asks.readAllStandardOutput()).trimmed();
}

void PrivateSoundServer::record(QProcess& recorder, const QString& file, const QString& device) const {
    recorder.setStandardOutputFile(file);
    recorder.start(QStringLiteral("parec"),
                   {QStringLiteral("--device=%1.monitor").arg(device), QStringLiteral("--format=s16le"),
                    QStringLiteral("--rate=48000"), QStringLiteral("--channels=1"), QStringLiteral("--raw"),
                    QStringLiteral("--latency-msec=10")});
    recorder.waitForStarted();
}

}  // namespace korvane
