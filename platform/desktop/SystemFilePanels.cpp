#include "platform/desktop/SystemFilePanels.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QHeaderView>
#include <QMimeDatabase>
#include <QPushButton>
#include <QSettings>
#include <QStandardPaths>
#include <QStyleFactory>
#include <QTreeView>
#include <QUrl>
#include <utility>

namespace korvane {
namespace {

QStringList patterns(const PanelFileType& type) {
    const auto known = QMimeDatabase().mimeTypeForName(QString::fromStdString(type.mimeType));
    QStringList globs = known.isValid() ? known.globPatterns() : QStringList();
    const QString usual = QStringLiteral("*.") + QString::fromStdString(type.suffix);
    if (!globs.contains(usual))
        globs.prepend(usual);
    QStringList both;
    for (const QString& glob : std::as_const(globs))
        both << glob << glob.toUpper();
    both.removeDuplicates();
    return both;
}

QString filter(const QString& description, const QStringList& globs) {
    return description + QStringLiteral(" (") + globs.join(QLatin1Char(' ')) + QLatin1Char(')');
}

void configureTypes(QFileDialog& dialog, const std::string& title, const std::vector<PanelFileType>& types) {
    dialog.setWindowTitle(QString::fromStdString(title));
    dialog.setNameFilters(nameFilters(types));
    dialog.setOption(QFileDialog::HideNameFilterDetails);
    dialog.setViewMode(QFileDialog::Detail);
}

QList<QUrl> places() {
    QList<QUrl> urls;
    for (const auto place : {QStandardPaths::HomeLocation, QStandardPaths::MoviesLocation,
                             QStandardPaths::DesktopLocation, QStandardPaths::DownloadLocation}) {
        const QString folder = QStandardPaths::writableLocation(place);
        const QUrl url = QUrl::fromLocalFile(folder);
        if (QDir(folder).exists() && !urls.contains(url))
            urls << url;
    }
    return urls;
}

/// What the toolkit's own panel lacks by itself: room for names, and calm buttons. Does nothing to a
/// desktop's.
void arrange(QFileDialog& dialog) {
    dialog.resize(860, 560);
    if (const auto* list = dialog.findChild<QTreeView*>(QStringLiteral("treeView"))) {
        list->header()->setStretchLastSection(false);
        list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
        list->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    }
    if (const auto* box = dialog.findChild<QDialogButtonBox*>())
        for (auto* button : box->buttons())
            button->setIcon({});
}

}  // namespace

QStringList nameFilters(const std::vector<PanelFileType>& types) {
    QStringList each, names, allGlobs;
    for (const auto& type : types) {
        const QString name = QString::fromStdString(type.description);
        const QStringList globs = patterns(type);
        each << filter(name, globs);
        names << name;
        allGlobs << globs;
    }
    allGlobs.removeDuplicates();
    if (types.size() > 1)
        each.prepend(filter(names.join(QStringLiteral(" or ")), allGlobs));
    return each;
}

SystemFilePanels::SystemFilePanels(QPalette palette) : palette_(std::move(palette)) {}

void SystemFilePanels::configure(QFileDialog& dialog, const OpenPanelRequest& request) {
    configureTypes(dialog, request.title, request.allowedTypes);
    dialog.setAcceptMode(QFileDialog::AcceptOpen);
    dialog.setFileMode(QFileDialog::ExistingFile);
    // Whoever looks for a video doesn't mean to rename or delete one.
    dialog.setOption(QFileDialog::ReadOnly);
}

void SystemFilePanels::configure(QFileDialog& dialog, const SavePanelRequest& request) {
    configureTypes(dialog, request.title, request.allowedTypes);
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setFileMode(QFileDialog::AnyFile);
    dialog.setOption(QFileDialog::ReadOnly, !request.canCreateFolders);
    if (!request.allowedTypes.empty())
        dialog.setDefaultSuffix(QString::fromStdString(request.allowedTypes.front().suffix));
    dialog.selectFile(QString::fromStdString(request.proposedName));
}

std::optional<std::filesystem::path> SystemFilePanels::runOpenPanel(const OpenPanelRequest& request) {
    return run(request);
}

std::optional<std::filesystem::path> SystemFilePanels::runSavePanel(const SavePanelRequest& request) {
    return run(request);
}

template <class Request>
std::optional<std::filesystem::path> SystemFilePanels::run(const Request& request) {
    // Set as late as this, because a style takes time to make and the window itself has none.
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    QApplication::setPalette(palette_);
    // The toolkit's panel would write down for good which folders the person was in. Below what is no folder
    // nothing can be written, and the program keeps no other settings by the toolkit's means.
    QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, QStringLiteral("/dev/null"));
    QFileDialog dialog;
    dialog.setDirectory(startFolder());
    dialog.setSidebarUrls(places());
    configure(dialog, request);
    arrange(dialog);
    dialog.winId();  // makes the window that can be put above ours
    dialog.windowHandle()->setTransientParent(window_);
    dialog.setWindowModality(Qt::ApplicationModal);
    const int answer = dialog.exec();
    // When the panel goes together with a question over it, some window managers give the keyboard to nobody.
    if (window_)
        window_->requestActivate();
    if (answer != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return std::nullopt;
    lastFolder_ = dialog.directory().absolutePath();
    return std::filesystem::path(QFile::encodeName(dialog.selectedFiles().constFirst()).toStdString());
}

QString SystemFilePanels::startFolder() const {
    const QString videos = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
    for (const QString& folder : {lastFolder_, videos})
        if (!folder.isEmpty() && QDir(folder).exists())
            return folder;
    return QDir::homePath();
}

}  // namespace korvane
