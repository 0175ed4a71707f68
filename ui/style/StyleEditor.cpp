#include "ui/style/StyleEditor.h"

#include <algorithm>
#include <cmath>

#include "ui/style/ColorConversion.h"
#include "ui/style/FontWords.h"

namespace korvane {
namespace {

/// Truncated toward zero, as sizes are shown.
QString wholeNumber(double value) {
    // Adding zero takes the sign from a negative one.
    return QString::number(std::trunc(value) + 0.0, 'f', 0);
}

}  // namespace

struct StyleEditor::ReadFonts {
    QStringList families;
    std::vector<FontListModel::Row> rows;
};

StyleEditor::StyleEditor(Read read, Write write, QObject* parent)
    : StyleEditor(std::move(read), std::move(write), StyleFonts::installed(), parent) {}

StyleEditor::StyleEditor(Read read, Write write, StyleFonts fonts, QObject* parent)
    : QObject(parent),
      read_(std::move(read)),
      write_(std::move(write)),
      fonts_(std::move(fonts)),
      shown_(read_()) {}

StyleEditor::~StyleEditor() = default;

void StyleEditor::prefetchFonts() {
    if (fontsAreRead_ || reading_)
        return;
    const auto read = [fonts = fonts_](const std::stop_token&) {
        ReadFonts result;
        for (const auto& family : fonts.families()) {
            const auto name = QString::fromStdString(family);
            result.families.push_back(name);
            result.rows.push_back({name, fonts.writesOwnName(family)});
        }
        return result;
    };
    reading_.emplace(queue_, read, [this](Outcome<ReadFonts> outcome) { takeFonts(outcome.take()); });
}

void StyleEditor::takeFonts(ReadFonts fonts) {
    fontsAreRead_ = true;
    families_ = std::move(fonts.families);
    fontList_.setRows(std::move(fonts.rows));
    readWeights(shown_.fontFamilyName);
    lookUpFace();
    Q_EMIT fontsChanged();
    Q_EMIT weightsChanged();
}

void StyleEditor::readWeights(const std::string& family) {
    weights_ = fonts_.weights(family);
    weightsFamily_ = family;
}

void StyleEditor::lookUpFace() {
    try {
        const FontFace& face = fonts_.face(shown_.fontPostscriptName);
        const bool familyIsListed = families_.contains(QString::fromStdString(shown_.fontFamilyName));
        fontNote_ = substitutionNote(shown_, familyIsListed, face);
    } catch (const FontError& error) {
        fontNote_ = QString::fromUtf8(error.what());
    }
}

void StyleEditor::settingsChanged() {
    const SubtitleSettings before = std::exchange(shown_, read_());
    const bool otherFamily = before.fontFamilyName != shown_.fontFamilyName;
    const bool otherFace = before.fontPostscriptName != shown_.fontPostscriptName;
    // A family chosen here had its faces opened a moment ago.
    if (fontsAreRead_ && weightsFamily_ != shown_.fontFamilyName)
        readWeights(shown_.fontFamilyName);
    if (fontsAreRead_ && (otherFamily || otherFace))
        lookUpFace();
    if (otherFamily)
        Q_EMIT fontFamilyNameChanged();
    if (otherFace)
        Q_EMIT fontPostscriptNameChanged();
    if (otherFamily || otherFace)
        Q_EMIT weightsChanged();
    if (before.fontSize != shown_.fontSize)
        Q_EMIT fontSizeChanged();
    if (before.textColor() != shown_.textColor())
        Q_EMIT textColorChanged();
    if (before.hasShadow != shown_.hasShadow)
        Q_EMIT hasShadowChanged();
    if (before.shadowColor() != shown_.shadowColor())
        Q_EMIT shadowColorChanged();
    if (before.shadowRadius != shown_.shadowRadius)
        Q_EMIT shadowRadiusChanged();
    if (before.verticalPosition != shown_.verticalPosition)
        Q_EMIT verticalPositionChanged();
    if (before.hasPopAnimation != shown_.hasPopAnimation)
        Q_EMIT hasPopAnimationChanged();
}

void StyleEditor::store(const SubtitleSettings& changed) {
    if (changed != read_())
        write_(changed);
}

template <class Value>
void StyleEditor::change(Value SubtitleSettings::*field, const Value& value) {
    SubtitleSettings changed = read_();
    changed.*field = value;
    store(changed);
}

QString StyleEditor::fontFamilyName() const {
    return QString::fromStdString(read_().fontFamilyName);
}

void StyleEditor::setFontFamilyName(const QString& family) {
    SubtitleSettings changed = read_();
    const auto name = family.toStdString();
    if (name == changed.fontFamilyName)
        return;
    changed.fontFamilyName = name;
    readWeights(name);
    if (!weights_.empty())
        changed.fontPostscriptName = weights_.back().postscript;
    store(changed);
}

QString StyleEditor::fontPostscriptName() const {
    return QString::fromStdString(read_().fontPostscriptName);
}

void StyleEditor::setFontPostscriptName(const QString& postscript) {
    change(&SubtitleSettings::fontPostscriptName, postscript.toStdString());
}

void StyleEditor::chooseWeight(int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= weights_.size())
        return;
    change(&SubtitleSettings::fontPostscriptName, weights_[static_cast<std::size_t>(index)].postscript);
}

QStringList StyleEditor::weightNames() const {
    QStringList names;
    for (const auto& weight : weights_)
        names.push_back(QString::fromStdString(weight.name));
    return names;
}

int StyleEditor::weightIndex() const {
    const auto found =
        std::find_if(weights_.begin(), weights_.end(), [this](const SubtitleSettings::Weight& weight) {
            return weight.postscript == shown_.fontPostscriptName;
        });
    return found == weights_.end() ? -1 : static_cast<int>(found - weights_.begin());
}

QString StyleEditor::weightName() const {
    const int index = weightIndex();
    return index < 0 ? weightInPostScriptName(shown_.fontPostscriptName)
                     : QString::fromStdString(weights_[static_cast<std::size_t>(index)].name);
}

double StyleEditor::fontSize() const {
    return read_().fontSize;
}

void StyleEditor::setFontSize(double points) {
    change(&SubtitleSettings::fontSize, points);
}

QString StyleEditor::fontSizeLabel() const {
    return wholeNumber(fontSize()) + QStringLiteral("pt");
}

QColor StyleEditor::textColor() const {
    return toQColor(read_().textColor());
}

void StyleEditor::setTextColor(const QColor& color) {
    SubtitleSettings changed = read_();
    if (color == toQColor(changed.textColor()))
        return;
    changed.setTextColor(fromQColor(color));
    store(changed);
}

bool StyleEditor::hasShadow() const {
    return read_().hasShadow;
}

void StyleEditor::setHasShadow(bool on) {
    change(&SubtitleSettings::hasShadow, on);
}

QColor StyleEditor::shadowColor() const {
    return toQColor(read_().shadowColor());
}

void StyleEditor::setShadowColor(const QColor& color) {
    SubtitleSettings changed = read_();
    if (color == toQColor(changed.shadowColor()))
        return;
    changed.setShadowColor(fromQColor(color));
    store(changed);
}

double StyleEditor::shadowRadius() const {
    return read_().shadowRadius;
}

void StyleEditor::setShadowRadius(double points) {
    change(&SubtitleSettings::shadowRadius, points);
}

QString StyleEditor::shadowRadiusLabel() const {
    return wholeNumber(shadowRadius()) + QStringLiteral("px");
}

double StyleEditor::verticalPosition() const {
    return read_().verticalPosition;
}

void StyleEditor::setVerticalPosition(double fraction) {
    change(&SubtitleSettings::verticalPosition, fraction);
}

bool StyleEditor::hasPopAnimation() const {
    return read_().hasPopAnimation;
}

void StyleEditor::setHasPopAnimation(bool on) {
    change(&SubtitleSettings::hasPopAnimation, on);
}

}  // namespace korvane
