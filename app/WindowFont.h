// The letters that the window's own texts are written with.
#pragma once

#include <QFont>
#include <QString>
#include <QStringList>
#include <functional>

namespace korvane {

/// The families of the window's texts, best first, emoji last. Without a platform theme the desktop's family
/// is an alias ("Sans Serif") that the toolkit resolves to whatever it likes, even to emoji: only families
/// that are installed under their own name count. \param desktop  what the desktop writes with. \param
/// installed  by name, in any case of letters. \param bestSans  asked only when neither our family nor the
/// desktop's is installed; empty: none.
QStringList windowFontFamilies(const QStringList& desktop, const QStringList& installed,
                               const std::function<QString()>& bestSans);

/// The desktop's font with those families. Reads the list of fonts: a few milliseconds. Needs the application
/// object.
QFont windowFont();

}  // namespace korvane
