// A sound server of a test's own, with one device that nobody hears. Everything it needs lies in a folder
// that goes with it; no other server of the machine is touched.
#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

namespace korvane {

class PrivateSoundServer {
  public:
    /// Points this process and its children at the server's folder; to be made before anything asks for
    /// devices. Not running yet.
    PrivateSoundServer();
    ~PrivateSoundServer();

    /// Returns once it answers. \return false when it can't be started.
    bool start();
    /// Ends it as a crash would.
    void kill();

    /// Lets it stand still, as a server that hangs, and go on.
    void halt();
    void resume();
    /// Has `pactl` ask it for something; for a server that answers. \return what it answered.
    QString ask(const QStringList& words) const;
    QString folder() const { return folder_.path(); }

    /// What a device plays, from now on, as 16-bit mono at 48 kHz, into `file`.
    void record(QProcess& recorder, const QString& file, const QString& device = QStringLiteral("nul")) const;

  private:
    QTemporaryDir folder_;
    QProcess server_;
};

}  // namespace korvane
