// What is said of fonts: names that are shown, and how a search compares them. Pure.
#pragma once

#include <QString>
#include <QStringList>
#include <string>

#include "model/SubtitleSettings.h"
#include "platform/fonts/FontFace.h"

namespace korvane {

/// What a face's name says of its weight: "Bold" of "HelveticaNeue-Bold", "Semi Bold Italic" of
/// "Inter-SemiBoldItalic", "Regular" of a name that says nothing.
QString weightInPostScriptName(const std::string& postscript);

/// Which face takes the place of one that is not installed; empty when `drawn` is the stored one.
QString substitutionNote(const SubtitleSettings& stored, bool familyIsInstalled, const FontFace& drawn);

/// Lower case without accents, so that "é" and "E" compare equal.
QString foldedForSearch(const QString& text);

/// Whether each word of a search (already folded) occurs in a folded name.
bool matchesAllWords(const QString& foldedName, const QStringList& foldedWords);

}  // namespace korvane
