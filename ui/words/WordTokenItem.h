// What a token of the word area is in C++: which word it shows, in which state, and the colours of that
// state. Its picture is WordToken.qml. The area hands the same token to other words as they scroll by. Main
// thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QFont>
#include <QQuickItem>
#include <QString>
#include <QVariantAnimation>

namespace korvane {

class WordTokenItem : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    Q_PROPERTY(bool selected READ isSelected WRITE setSelected NOTIFY selectedChanged)
    Q_PROPERTY(bool current READ isCurrent NOTIFY currentChanged)  // has the keyboard
    Q_PROPERTY(QFont font READ font CONSTANT)
    Q_PROPERTY(QColor textColor READ textColor NOTIFY looksChanged)
    Q_PROPERTY(QColor fillColor READ fillColor NOTIFY looksChanged)
    Q_PROPERTY(QColor borderColor READ borderColor NOTIFY looksChanged)

  public:
    explicit WordTokenItem(QQuickItem* parent = nullptr);

    /// Shows another word at once, without the change being animated.
    void show(int index, const QString& text, bool selected);
    int index() const { return index_; }

    const QString& text() const { return text_; }
    void setText(const QString& text);
    bool isSelected() const { return selected_; }
    /// Turns into the other look within 0.12 s.
    void setSelected(bool selected);
    bool isCurrent() const { return current_; }
    void setCurrent(bool current);
    void setHovered(bool hovered);
    void setPressed(bool pressed);

    QFont font() const;
    QColor textColor() const;
    QColor fillColor() const;
    QColor borderColor() const;

    /// What an assistive technology's press does.
    Q_INVOKABLE void press() { Q_EMIT pressed(index_); }

  Q_SIGNALS:
    void textChanged();
    void selectedChanged();
    void currentChanged();
    void looksChanged();
    void pressed(int index);

  private:
    void setShare(double share);

    int index_ = -1;
    QString text_;
    bool selected_ = false;
    bool current_ = false;
    bool hovered_ = false;
    bool pressed_ = false;
    double share_ = 0.0;                      ///< of the selected look in what is drawn
    QVariantAnimation* animation_ = nullptr;  ///< made when the first change is to be seen
};

}  // namespace korvane
