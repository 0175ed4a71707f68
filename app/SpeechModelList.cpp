#include "app/SpeechModelList.h"

#include <algorithm>
#include <array>
#include <utility>

namespace korvane {
namespace {

struct Field {
    const char* name;
    QVariant (*value)(const SpeechModelRow&);
};

template <auto member>
QVariant valueOf(const SpeechModelRow& row) {
    return QVariant::fromValue(row.*member);
}

constexpr std::array kFields{
    Field{"modelId", valueOf<&SpeechModelRow::modelId>},
    Field{"name", valueOf<&SpeechModelRow::name>},
    Field{"detail", valueOf<&SpeechModelRow::detail>},
    Field{"progressText", valueOf<&SpeechModelRow::progressText>},
    Field{"fraction", valueOf<&SpeechModelRow::fraction>},
    Field{"actionText", valueOf<&SpeechModelRow::actionText>},
    Field{"actionName", valueOf<&SpeechModelRow::actionName>},
    Field{"removalText", valueOf<&SpeechModelRow::removalText>},
    Field{"secondText", valueOf<&SpeechModelRow::secondText>},
    Field{"secondName", valueOf<&SpeechModelRow::secondName>},
    Field{"recommended", valueOf<&SpeechModelRow::recommended>},
    Field{"installed", valueOf<&SpeechModelRow::installed>},
    Field{"inUse", valueOf<&SpeechModelRow::inUse>},
    Field{"downloading", valueOf<&SpeechModelRow::downloading>},
    Field{"stopped", valueOf<&SpeechModelRow::stopped>},
    Field{"faulty", valueOf<&SpeechModelRow::faulty>},
    Field{"removes", valueOf<&SpeechModelRow::removes>},
};

bool holds(const std::vector<SpeechModelRow>& rows, const QString& id) {
    return std::ranges::find(rows, id, &SpeechModelRow::modelId) != rows.end();
}

bool areSameModels(const std::vector<SpeechModelRow>& a, const std::vector<SpeechModelRow>& b) {
    return std::ranges::equal(a, b, {}, &SpeechModelRow::modelId, &SpeechModelRow::modelId);
}

}  // namespace

int SpeechModelList::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(rows_.size());
}

QVariant SpeechModelList::data(const QModelIndex& index, int role) const {
    const int field = role - Qt::UserRole;
    if (!checkIndex(index, CheckIndexOption::IndexIsValid) || field < 0 || field >= int{kFields.size()})
        return {};
    return kFields[static_cast<std::size_t>(field)].value(rows_[static_cast<std::size_t>(index.row())]);
}

QHash<int, QByteArray> SpeechModelList::roleNames() const {
    QHash<int, QByteArray> names;
    for (const Field& field : kFields)
        names.insert(Qt::UserRole + static_cast<int>(names.size()), field.name);
    return names;
}

void SpeechModelList::replace(std::vector<SpeechModelRow> rows) {
    removeMissing(rows);
    insertNew(rows);
    if (!areSameModels(rows_, rows)) {  // another order
        beginResetModel();
        rows_ = std::move(rows);
        endResetModel();
        return;
    }
    for (std::size_t i = 0; i < rows_.size(); ++i) {
        if (rows_[i] == rows[i])
            continue;
        rows_[i] = std::move(rows[i]);
        const QModelIndex changed = index(static_cast<int>(i));
        Q_EMIT dataChanged(changed, changed);
    }
}

void SpeechModelList::removeMissing(const std::vector<SpeechModelRow>& rows) {
    for (int i = rowCount() - 1; i >= 0; --i) {
        const auto at = rows_.begin() + i;
        if (holds(rows, at->modelId))
            continue;
        beginRemoveRows({}, i, i);
        rows_.erase(at);
        endRemoveRows();
    }
}

void SpeechModelList::insertNew(const std::vector<SpeechModelRow>& rows) {
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (holds(rows_, rows[i].modelId))
            continue;
        const int place = static_cast<int>(std::min(i, rows_.size()));
        beginInsertRows({}, place, place);
        rows_.insert(rows_.begin() + place, rows[i]);
        endInsertRows();
    }
}

}  // namespace korvane
