// The speech models as a list for the screen, every text ready to be shown. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QAbstractListModel>
#include <QString>
#include <optional>
#include <vector>

#include "app/SpeechModelServices.h"

namespace korvane {

struct SpeechModelRow {
    QString modelId;
    QString name;
    QString detail;        ///< size, memory, speed; of a file that can't be used, why
    QString progressText;  ///< of a download that runs or was stopped; else empty
    double fraction = 0;   ///< of the same
    QString actionText;    ///< of the button; empty where there is nothing to do
    QString actionName;    ///< the same for assistive tools
    QString removalText;   ///< what removing it means
    QString secondText;    ///< of the quiet button beside it; empty where there is nothing more to do
    QString secondName;    ///< the same for assistive tools
    bool recommended = false;
    bool installed = false;
    bool inUse = false;
    bool downloading = false;
    bool stopped = false;  ///< a part is there
    bool faulty = false;   ///< a file is here that can't be used
    bool removes = false;  ///< what the button does, or the quiet one where the button doesn't
    friend bool operator==(const SpeechModelRow&, const SpeechModelRow&) = default;
};

/// A download that runs. Without a report nothing has happened yet.
struct RunningDownload {
    std::optional<DownloadProgress> report;
    bool isStopping = false;
};

/// Pure. \param running  null when the model isn't being downloaded.
SpeechModelRow speechModelRow(const SpeechModelOffer& offer, bool inUse, const RunningDownload* running);

class SpeechModelList : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by whoever knows the models")

  public:
    using QAbstractListModel::QAbstractListModel;

    int rowCount(const QModelIndex& parent = {}) const override;
    /// Roles are the fields of SpeechModelRow, in their order from Qt::UserRole on.
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    /// Rows that stay only change, so that whatever has the keyboard keeps it.
    void replace(std::vector<SpeechModelRow> rows);
    const std::vector<SpeechModelRow>& rows() const { return rows_; }

  private:
    void removeMissing(const std::vector<SpeechModelRow>& rows);
    void insertNew(const std::vector<SpeechModelRow>& rows);

    std::vector<SpeechModelRow> rows_;
};

}  // namespace korvane
