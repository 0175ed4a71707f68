// The transcript as the token area reads it: a row for each word. It holds nothing; words and selection
// belong to whoever made it. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QAbstractListModel>
#include <set>
#include <vector>

#include "model/SpeechSegment.h"

namespace korvane {

class WordListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by whoever owns the words")

  public:
    enum Role { textRole = Qt::UserRole + 1, selectedRole };
    Q_ENUM(Role)

    /// \param segments,selected  must outlive this.
    WordListModel(const std::vector<SpeechSegment>& segments, const std::set<int>& selected,
                  QObject* parent = nullptr);

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;  ///< "text", "selected"

    /// To be called after `segments` got other words.
    void wordsReplaced();
    /// To be called after the selection changed within [first, last]; the range may reach beyond the words.
    void selectionChanged(int first, int last);

  private:
    const std::vector<SpeechSegment>& segments_;
    const std::set<int>& selected_;
};

}  // namespace korvane
