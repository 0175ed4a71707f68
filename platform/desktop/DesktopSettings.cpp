#include "platform/desktop/DesktopSettings.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>
#include <QFile>
#include <QStandardPaths>
#include <system_error>

namespace korvane {
namespace {

/// These files are a few hundred bytes; anything else under their names isn't read.
constexpr qint64 maxSettingsBytes = 1 << 20;

std::string textOf(const std::filesystem::path& path) {
    std::error_code error;
    if (!std::filesystem::is_regular_file(path, error))
        return {};
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.read(maxSettingsBytes).toStdString();
}

bool isKde(const DesktopEnvironment& environment) {
    return environment.currentDesktop.find("KDE") != std::string::npos;
}

std::optional<TitleButtons> fromGtk(const DesktopEnvironment& environment) {
    for (const char* version : {"gtk-4.0", "gtk-3.0"})
        if (const auto buttons =
                parseGtkSettings(textOf(environment.configFolder / version / "settings.ini")))
            return buttons;
    return std::nullopt;
}

std::optional<TitleButtons> fromKwin(const DesktopEnvironment& environment) {
    return parseKwinSettings(textOf(environment.configFolder / "kwinrc"));
}

/// The service wraps a value once or twice, depending on its age.
QString unwrapped(QVariant value) {
    while (value.canConvert<QDBusVariant>())
        value = value.value<QDBusVariant>().variant();
    return value.toString();
}

}  // namespace

DesktopEnvironment DesktopEnvironment::ofProcess() {
    std::error_code error;
    const auto runtime = qEnvironmentVariable("XDG_RUNTIME_DIR").toStdString();
    return {
        QFile::encodeName(QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation))
            .toStdString(),
        qEnvironmentVariable("XDG_CURRENT_DESKTOP").toStdString(),
        !qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") ||
            (!runtime.empty() && std::filesystem::is_socket(std::filesystem::path(runtime) / "bus", error))};
}

TitleButtons titleButtonsFromFiles(const DesktopEnvironment& environment) {
    // KDE writes GTK's file as well, so that foreign windows fit in; its own is the truth of it.
    std::optional<TitleButtons> buttons;
    if (isKde(environment))
        buttons = fromKwin(environment);
    if (!buttons)
        buttons = fromGtk(environment);
    if (!buttons)
        buttons = fromKwin(environment);
    return buttons.value_or(TitleButtons());
}

DesktopSettings::DesktopSettings(DesktopEnvironment environment)
    : titleButtons_(titleButtonsFromFiles(environment)) {
    // KDE's service answers for GTK windows, with a default that its own windows don't follow.
    if (environment.hasSessionBus && !isKde(environment))
        askService();
}

void DesktopSettings::askService() {
    auto call = QDBusMessage::createMethodCall(
        QStringLiteral("org.freedesktop.portal.Desktop"), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.Settings"), QStringLiteral("Read"));
    call.setArguments({QStringLiteral("org.gnome.desktop.wm.preferences"), QStringLiteral("button-layout")});
    answer_ = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), this);
    connect(answer_, &QDBusPendingCallWatcher::finished, this, &DesktopSettings::takeAnswer);
}

void DesktopSettings::takeAnswer() {
    if (answer_ == nullptr || !answer_->isFinished())
        return;
    const QDBusPendingReply<QVariant> reply = *answer_;
    answer_->deleteLater();
    answer_ = nullptr;
    // No such service, or one that knows nothing of buttons: the files have said what there is to say.
    if (reply.isError())
        return;
    const auto buttons = parseButtonLayout(unwrapped(reply.value()).toStdString());
    if (!buttons || *buttons == titleButtons_)
        return;
    titleButtons_ = *buttons;
    Q_EMIT titleButtonsChanged();
}

}  // namespace korvane
