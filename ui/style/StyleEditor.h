// What the controls of the subtitle card are bound to: each field of the style as a property, and the fonts
// to choose from. The style belongs to whoever made this; a change is handed over whole and comes back
// through settingsChanged(). Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QColor>
#include <QObject>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

#include "model/SubtitleSettings.h"
#include "platform/tasks/BackgroundTask.h"
#include "platform/tasks/QtMainQueue.h"
#include "ui/style/FontListModel.h"
#include "ui/style/StyleFonts.h"

namespace korvane {

class StyleEditor : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by whoever owns the style")
    Q_PROPERTY(
        QString fontFamilyName READ fontFamilyName WRITE setFontFamilyName NOTIFY fontFamilyNameChanged)
    Q_PROPERTY(QString fontPostscriptName READ fontPostscriptName WRITE setFontPostscriptName NOTIFY
                   fontPostscriptNameChanged)
    Q_PROPERTY(double fontSize READ fontSize WRITE setFontSize NOTIFY fontSizeChanged)
    Q_PROPERTY(QString fontSizeLabel READ fontSizeLabel NOTIFY fontSizeChanged)
    Q_PROPERTY(QColor textColor READ textColor WRITE setTextColor NOTIFY textColorChanged)
    Q_PROPERTY(bool hasShadow READ hasShadow WRITE setHasShadow NOTIFY hasShadowChanged)
    Q_PROPERTY(QColor shadowColor READ shadowColor WRITE setShadowColor NOTIFY shadowColorChanged)
    Q_PROPERTY(double shadowRadius READ shadowRadius WRITE setShadowRadius NOTIFY shadowRadiusChanged)
    Q_PROPERTY(QString shadowRadiusLabel READ shadowRadiusLabel NOTIFY shadowRadiusChanged)
    Q_PROPERTY(double verticalPosition READ verticalPosition WRITE setVerticalPosition NOTIFY
                   verticalPositionChanged)
    Q_PROPERTY(
        bool hasPopAnimation READ hasPopAnimation WRITE setHasPopAnimation NOTIFY hasPopAnimationChanged)
    // Empty until the installed fonts have been read; see prefetchFonts().
    Q_PROPERTY(QStringList fontFamilies READ fontFamilies NOTIFY fontsChanged)
    Q_PROPERTY(korvane::FontListModel* fontList READ fontList CONSTANT)
    Q_PROPERTY(QStringList weightNames READ weightNames NOTIFY weightsChanged)
    Q_PROPERTY(int weightIndex READ weightIndex NOTIFY weightsChanged)  // -1: a face that is not in the list
    Q_PROPERTY(QString weightName READ weightName NOTIFY weightsChanged)
    Q_PROPERTY(
        QString fontNote READ fontNote NOTIFY weightsChanged)  // empty when the stored face is installed

  public:
    using Read = std::function<const SubtitleSettings&()>;
    /// Stores a whole new style; the owner saves it and calls settingsChanged().
    using Write = std::function<void(const SubtitleSettings&)>;

    StyleEditor(Read read, Write write, QObject* parent = nullptr);
    StyleEditor(Read read, Write write, StyleFonts fonts, QObject* parent = nullptr);
    /// Waits for a reading of the fonts that is under way.
    ~StyleEditor() override;

    /// To be called by the owner of the style after every change, whoever made it.
    void settingsChanged();

    /// Reads the installed fonts on a thread of its own, once; the lists appear when that is done.
    Q_INVOKABLE void prefetchFonts();

    QString fontFamilyName() const;
    /// Another family brings its last weight with it, in the same change; one without weights keeps the old
    /// face.
    void setFontFamilyName(const QString& family);
    Q_INVOKABLE void chooseFamily(const QString& family) { setFontFamilyName(family); }
    QString fontPostscriptName() const;
    void setFontPostscriptName(const QString& postscript);
    /// \param index  of `weightNames`; anything else changes nothing.
    Q_INVOKABLE void chooseWeight(int index);

    double fontSize() const;
    void setFontSize(double points);
    QString fontSizeLabel() const;
    QColor textColor() const;
    void setTextColor(const QColor& color);
    bool hasShadow() const;
    void setHasShadow(bool on);
    QColor shadowColor() const;
    void setShadowColor(const QColor& color);
    double shadowRadius() const;
    void setShadowRadius(double points);
    QString shadowRadiusLabel() const;
    double verticalPosition() const;
    void setVerticalPosition(double fraction);
    bool hasPopAnimation() const;
    void setHasPopAnimation(bool on);

    const QStringList& fontFamilies() const { return families_; }
    FontListModel* fontList() { return &fontList_; }
    QStringList weightNames() const;
    int weightIndex() const;
    /// The weight's name, or what the stored face's own name says of it.
    QString weightName() const;
    QString fontNote() const { return fontNote_; }

  Q_SIGNALS:
    void fontFamilyNameChanged();
    void fontPostscriptNameChanged();
    void fontSizeChanged();
    void textColorChanged();
    void hasShadowChanged();
    void shadowColorChanged();
    void shadowRadiusChanged();
    void verticalPositionChanged();
    void hasPopAnimationChanged();
    void fontsChanged();
    void weightsChanged();

  private:
    struct ReadFonts;

    template <class Value>
    void change(Value SubtitleSettings::*field, const Value& value);
    void store(const SubtitleSettings& changed);
    void takeFonts(ReadFonts fonts);
    void readWeights(const std::string& family);
    void lookUpFace();

    Read read_;
    Write write_;
    StyleFonts fonts_;
    SubtitleSettings shown_;  ///< what the controls were last told
    bool fontsAreRead_ = false;
    QStringList families_;
    FontListModel fontList_;
    std::string weightsFamily_;
    std::vector<SubtitleSettings::Weight> weights_;  ///< of `weightsFamily_`
    QString fontNote_;
    QtMainQueue queue_;
    std::optional<BackgroundTask<ReadFonts>> reading_;
};

}  // namespace korvane
