#include "ui/words/WordListModel.h"

#include <algorithm>

namespace korvane {

WordListModel::WordListModel(const std::vector<SpeechSegment>& segments, const std::set<int>& selected,
                             QObject* parent)
    : QAbstractListModel(parent), segments_(segments), selected_(selected) {}

int WordListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(segments_.size());
}

QVariant WordListModel::data(const QModelIndex& index, int role) const {
    // The words may already be fewer than an index made before they were replaced says.
    if (!index.isValid() || index.row() >= rowCount())
        return {};
    switch (role) {
        case Qt::DisplayRole:
        case textRole:
            return QString::fromStdString(segments_[static_cast<std::size_t>(index.row())].text());
        case selectedRole:
            return selected_.contains(index.row());
        default:
            return {};
    }
}

QHash<int, QByteArray> WordListModel::roleNames() const {
    return {{textRole, "text"}, {selectedRole, "selected"}};
}

void WordListModel::wordsReplaced() {
    beginResetModel();
    endResetModel();
}

void WordListModel::selectionChanged(int first, int last) {
    const int end = std::min(last, rowCount() - 1);
    const int begin = std::max(first, 0);
    if (begin <= end)
        Q_EMIT dataChanged(index(begin), index(end), {selectedRole});
}

}  // namespace korvane
