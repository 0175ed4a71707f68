// How large a token has to be for its word. It measures with the same text engine and settings as the token
// draws with, so nothing is cut off: fallback faces for other scripts and emoji, marks and right-to-left
// words included. Main thread only.
#pragma once

#include <QFont>
#include <QHash>
#include <QSizeF>
#include <QString>

namespace korvane {

class WordMetrics {
  public:
    static constexpr double kHorizontalPadding = 7.0;  ///< points, on each side
    static constexpr double kVerticalPadding = 4.0;
    static constexpr int kFontSize = 13;  ///< points of the screen, which are logical pixels

    /// The application's font at the size of a token.
    static QFont font();

    /// A word as it is drawn: what would break the line is a blank.
    static QString shown(QString text);

    /// The token's size, whole points, padding included. A word that was asked for before costs a look-up.
    QSizeF tokenSize(const QString& shownText);

    /// To be called when the application's font is another one.
    void forget();

  private:
    QSizeF measured(const QString& shownText) const;

    QFont font_ = font();
    QHash<QString, QSizeF> known_;
};

}  // namespace korvane
