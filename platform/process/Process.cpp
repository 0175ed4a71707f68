#include "platform/process/Process.h"

#include <fcntl.h>
#include <langinfo.h>
#include <pwd.h>
#include <signal.h>
#include <unistd.h>

#include <QString>
#include <QtGlobal>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>
#include <system_error>
#include <utility>

namespace korvane {
namespace {

constexpr const char* runtimeVariable = "XDG_RUNTIME_DIR";

/// The folder lent at present; empty: none. A process has one environment, hence one such folder.
std::string lentFolder;

void fillStandardStreams() {
    for (int number = 0; number <= 2; ++number)
        if (fcntl(number, F_GETFD) == -1)
            open("/dev/null", number == 0 ? O_RDONLY : O_WRONLY);  // takes the lowest free number
}

// Qt insists on UTF-8 and says so on standard error, which nobody asked about.
void useUtf8() {
    std::setlocale(LC_CTYPE, "");
    if (std::string_view(nl_langinfo(CODESET)) != "UTF-8")
        setenv("LC_ALL", "C.UTF-8", 1);
}

// What goes wrong reaches the person as one sentence from the service that met it.
void dropLibraryChatter(QtMsgType type, const QMessageLogContext&, const QString& message) {
    if (type == QtFatalMsg)
        std::fputs((message.toStdString() + "\n").c_str(), stderr);
}

// What names the person's folders may be missing (services, minimal shells) or empty.
void nameFolders() {
    const char* temporary = std::getenv("TMPDIR");
    if (temporary != nullptr && *temporary == '\0')
        unsetenv("TMPDIR");
    const char* home = std::getenv("HOME");
    const passwd* account = home == nullptr || *home == '\0' ? getpwuid(getuid()) : nullptr;
    if (account != nullptr && account->pw_dir != nullptr)
        setenv("HOME", account->pw_dir, 1);
}

}  // namespace

void prepareProcess() {
    fillStandardStreams();
    signal(SIGPIPE, SIG_IGN);
    signal(SIGXFSZ, SIG_IGN);
    useUtf8();
    nameFolders();
    qInstallMessageHandler(dropLibraryChatter);
}

void settleLocale() {
    std::setlocale(LC_NUMERIC, "C");
    std::setlocale(LC_MESSAGES, "C");
}

BorrowedRuntimeFolder::BorrowedRuntimeFolder() {
    std::error_code error;
    const auto temporary = std::filesystem::temp_directory_path(error);
    if (std::getenv(runtimeVariable) != nullptr || error)
        return;
    std::string pattern = (temporary / "korvane-XXXXXX").string();
    if (mkdtemp(pattern.data()) == nullptr)
        return;
    lentFolder = pattern;
    setenv(runtimeVariable, lentFolder.c_str(), 1);
}

BorrowedRuntimeFolder::~BorrowedRuntimeFolder() {
    giveBack();
}

void BorrowedRuntimeFolder::giveBack() {
    if (lentFolder.empty())
        return;
    unsetenv(runtimeVariable);
    std::error_code ignored;
    std::filesystem::remove_all(std::exchange(lentFolder, {}), ignored);
}

}  // namespace korvane
