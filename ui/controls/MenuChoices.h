// What a menu knows of its labels: how wide the widest is, and which one a person means who types its first
// letters. Main thread.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QElapsedTimer>
#include <QFont>
#include <QObject>
#include <QStringList>

namespace korvane {

class MenuChoices : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QStringList labels READ labels WRITE setLabels NOTIFY labelsChanged)
    Q_PROPERTY(QFont font READ font WRITE setFont NOTIFY fontChanged)
    Q_PROPERTY(qreal widest READ widest NOTIFY widestChanged)

  public:
    using QObject::QObject;

    QStringList labels() const { return labels_; }
    void setLabels(const QStringList& labels);
    QFont font() const { return font_; }
    void setFont(const QFont& font);
    /// Points that the widest label takes, rounded up; 0 without labels.
    qreal widest() const { return widest_; }

    /// The label at `index`, or an empty text.
    Q_INVOKABLE QString at(int index) const { return labels_.value(index); }

    /// The index that typing `text` leads to from `current`, or -1 when no label begins so.
    ///
    /// Letters typed within a second of each other belong together; the same letter again goes to the next
    /// label that begins with it. Case and what is not a letter or digit at a label's front (a flag) are
    /// passed over.
    Q_INVOKABLE int typed(const QString& text, int current);

  Q_SIGNALS:
    void labelsChanged();
    void fontChanged();
    void widestChanged();

  private:
    void measure();

    QStringList labels_;
    QFont font_;
    qreal widest_ = 0;
    QString prefix_;
    QElapsedTimer sinceLetter_;
};

}  // namespace korvane
