// The families of the font menu, narrowed by what is typed into its search field. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QAbstractListModel>
#include <QString>
#include <vector>

namespace korvane {

class FontListModel : public QAbstractListModel {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("belongs to the style editor")
    /// Words; a family is listed when its name holds them all, whatever their case and accents.
    Q_PROPERTY(QString search READ search WRITE setSearch NOTIFY searchChanged)
    Q_PROPERTY(int count READ count NOTIFY countChanged)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY emptyTextChanged)

  public:
    struct Row {
        QString family;
        bool writesOwnName = true;  ///< else the name is shown in the screen's own font
    };
    enum Role { FamilyRole = Qt::UserRole, SampleFamilyRole };

    using QAbstractListModel::QAbstractListModel;

    /// \param rows  in the order to be shown; the search stays.
    void setRows(std::vector<Row> rows);

    QString search() const { return search_; }
    void setSearch(const QString& search);
    /// Why nothing is listed; empty while something is.
    QString emptyText() const;
    int count() const { return static_cast<int>(listed_.size()); }

    /// Where a family stands among those listed; -1 when it is not.
    Q_INVOKABLE int indexOf(const QString& family) const;
    /// The family in a line; empty outside the list.
    Q_INVOKABLE QString familyAt(int line) const;

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

  Q_SIGNALS:
    void searchChanged();
    void countChanged();
    void emptyTextChanged();

  private:
    void list();

    std::vector<Row> rows_;
    std::vector<QString> folded_;      ///< names as the search compares them
    std::vector<std::size_t> listed_;  ///< indices of rows
    QString search_;
    bool rowsAreKnown_ = false;
};

}  // namespace korvane
