// The speech models on this machine as the screen shows them, and what a person does with them. Nothing is
// looked at before somebody wants to see it, and nothing is downloaded unless asked for. Main thread; the
// work runs on workers.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QList>
#include <QObject>
#include <QUrl>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "app/SpeechModelList.h"
#include "app/SpeechModelServices.h"
#include "platform/desktop/FilePanels.h"
#include "platform/tasks/MainQueue.h"
#include "platform/tasks/MainTask.h"

namespace korvane {

class SpeechModels : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the screen's state")
    Q_PROPERTY(bool isOffered READ isOffered CONSTANT)
    Q_PROPERTY(bool isKnown READ isKnown NOTIFY foundChanged)
    Q_PROPERTY(bool hasInstalled READ hasInstalled NOTIFY foundChanged)
    Q_PROPERTY(korvane::SpeechModelList* rows READ rows CONSTANT)
    Q_PROPERTY(QString folderText READ folderText NOTIFY foundChanged)
    Q_PROPERTY(QString problem READ problem NOTIFY problemChanged)
    Q_PROPERTY(QString downloadText READ downloadText NOTIFY downloadTextChanged)
    Q_PROPERTY(QString addingText READ addingText NOTIFY addingChanged)
    Q_PROPERTY(double addingFraction READ addingFraction NOTIFY addingChanged)

  public:
    /// \param services  null where models can't be used; then nothing is offered.
    SpeechModels(MainQueue& mainQueue, FilePanels& filePanels, std::unique_ptr<SpeechModelServices> services);
    /// Stops what runs and waits for it.
    ~SpeechModels() override;

    bool isOffered() const { return services_ != nullptr; }
    /// Whether the first look has brought something.
    bool isKnown() const { return isKnown_; }
    bool hasInstalled() const;
    SpeechModelList* rows() { return &rows_; }
    /// Where the person's own models lie, the home as "~".
    QString folderText() const;
    /// One sentence about what went wrong last; empty when nothing did.
    QString problem() const;
    /// How far the downloads are together, for whoever has closed the sheet; empty when none runs.
    QString downloadText() const;
    /// What is being copied, with its percentage; empty when nothing is.
    QString addingText() const;
    double addingFraction() const { return adding_ ? adding_->fraction : 0; }
    bool isDownloading() const;
    /// Whether closing the program would end something.
    bool isBusy() const { return isDownloading() || adding_; }

    /// Looks at the disk; rows() follows.
    Q_INVOKABLE void look();
    /// Begins or goes on downloading the model, or requests the end of that. Nothing for an installed one.
    Q_INVOKABLE void act(const QString& modelId);
    Q_INVOKABLE void remove(const QString& modelId);
    /// Forgets what a stopped download left.
    Q_INVOKABLE void discard(const QString& modelId);
    /// The model that recognises from now on.
    Q_INVOKABLE void use(const QString& modelId);
    /// Shows the panel; the event loop runs meanwhile.
    Q_INVOKABLE void chooseFile();
    Q_INVOKABLE bool acceptsDrop(const QList<QUrl>& urls) const;
    Q_INVOKABLE void addDropped(const QList<QUrl>& urls);
    /// Requests the end of everything.
    void stopAll();

  Q_SIGNALS:
    void foundChanged();
    void problemChanged();
    void downloadTextChanged();
    void addingChanged();
    void isBusyChanged();
    /// A model has come, and there is one that recognises: one that only finds voices helps nobody alone.
    void arrived();

  private:
    struct Download {
        RunningDownload shown;
        std::optional<TaskHandle> task;
        bool isOver = false;  ///< only what the next look finds replaces it
    };
    struct Adding {
        QString name;
        double fraction = 0;
    };
    using Change = std::function<void(SpeechModelServices&)>;

    MainTask runLook();
    MainTask runDownload(std::string id);
    MainTask runAdd(std::filesystem::path file);
    MainTask runChange(Change change);
    void startDownload(const std::string& id);
    void add(const std::filesystem::path& file);
    void show(SpeechModelsFound found);
    void forgetEnded();
    void showRows();
    void setProblem(std::string sentence);

    MainQueue& mainQueue_;
    FilePanels& filePanels_;
    std::unique_ptr<SpeechModelServices> services_;
    SpeechModelsFound found_;
    std::map<std::string, Download> downloads_;
    std::optional<Adding> adding_;
    std::optional<TaskHandle> addTask_;
    std::string problem_;
    SpeechModelList rows_;
    bool isKnown_ = false;
    bool isLooking_ = false;
    bool looksAgain_ = false;
    bool hasCome_ = false;  ///< a model; the next look tells whether anything can recognise now
    bool isPanelOpen_ = false;
    TaskScope tasks_;  // last, so that it ends before what the tasks work with
};

}  // namespace korvane
