#include "ui/style/FontListModel.h"

#include <QFont>
#include <QGuiApplication>

#include "ui/style/FontWords.h"

namespace korvane {

void FontListModel::setRows(std::vector<Row> rows) {
    rows_ = std::move(rows);
    rowsAreKnown_ = true;
    folded_.clear();
    for (const auto& row : rows_)
        folded_.push_back(foldedForSearch(row.family));
    list();
}

void FontListModel::setSearch(const QString& search) {
    if (search == search_)
        return;
    search_ = search;
    list();
    Q_EMIT searchChanged();
}

void FontListModel::list() {
    const auto words = foldedForSearch(search_.simplified()).split(QLatin1Char(' '), Qt::SkipEmptyParts);
    std::vector<std::size_t> listed;
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (matchesAllWords(folded_[i], words))
            listed.push_back(i);
    }
    const bool otherCount = listed.size() != listed_.size();
    beginResetModel();
    listed_ = std::move(listed);
    endResetModel();
    if (otherCount)
        Q_EMIT countChanged();
    Q_EMIT emptyTextChanged();
}

QString FontListModel::emptyText() const {
    if (!listed_.empty())
        return {};
    if (!rowsAreKnown_)
        return QStringLiteral("Reading the fonts…");
    return rows_.empty() ? QStringLiteral("No fonts found") : QStringLiteral("No font of that name");
}

int FontListModel::indexOf(const QString& family) const {
    for (std::size_t line = 0; line < listed_.size(); ++line) {
        if (rows_[listed_[line]].family == family)
            return static_cast<int>(line);
    }
    return -1;
}

QString FontListModel::familyAt(int line) const {
    return line < 0 || line >= count() ? QString() : rows_[listed_[static_cast<std::size_t>(line)]].family;
}

int FontListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : count();
}

QVariant FontListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid() || index.row() >= count())
        return {};
    const Row& row = rows_[listed_[static_cast<std::size_t>(index.row())]];
    switch (role) {
        case Qt::DisplayRole:
        case FamilyRole:
            return row.family;
        case SampleFamilyRole:
            return row.writesOwnName ? row.family : QGuiApplication::font().family();
    }
    return {};
}

QHash<int, QByteArray> FontListModel::roleNames() const {
    return {{FamilyRole, "family"}, {SampleFamilyRole, "sampleFamily"}};
}

}  // namespace korvane
