#include "bench/player/QuietSound.h"

#include <QByteArray>
#include <QStandardPaths>
#include <vector>

#include "tests/platform/sound/PrivateSoundServer.h"

namespace korvane::bench {
namespace {

/// The server's folder stands for these while it starts; what is measured uses the person's own, fonts and
/// caches among them.
constexpr const char* kBorrowed[] = {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME",
                                     "DBUS_SESSION_BUS_ADDRESS"};

struct Variable {
    const char* name;
    bool isSet;
    QByteArray value;
};

}  // namespace

QuietSound::QuietSound() {
    for (const char* name : {"pulseaudio", "pactl"})
        if (QStandardPaths::findExecutable(QString::fromLatin1(name)).isEmpty())
            return;
    std::vector<Variable> before;
    for (const char* name : kBorrowed)
        before.push_back({name, qEnvironmentVariableIsSet(name), qgetenv(name)});
    server_ = std::make_unique<PrivateSoundServer>();
    const bool runs = server_->start();
    for (const Variable& variable : before) {
        if (variable.isSet)
            qputenv(variable.name, variable.value);
        else
            qunsetenv(variable.name);
    }
    if (!runs)
        server_.reset();
}

QuietSound::~QuietSound() = default;

}  // namespace korvane::bench
