// A line of the reel as it stands in a preview of any size: laid out at the size of the exported picture, so
// that it breaks into the same lines, then drawn at the screen's pixels. Pure apart from the text engine.
#pragma once

#include <QImage>
#include <QPointF>
#include <QSizeF>
#include <QString>
#include <QStringList>
#include <memory>
#include <optional>
#include <string>

#include "model/SubtitleSettings.h"
#include "platform/fonts/FontLookup.h"

namespace korvane {

/// The middle of the subtitle's box in a picture of this size; in its unit, y down.
QPointF subtitleCenter(const QSizeF& frame, const SubtitleSettings& settings);

struct SubtitlePicture {
    QImage image;       ///< premultiplied; null when there is nothing to see
    QPoint topLeft;     ///< of the image in the frame, in pixels; may lie outside
    QStringList lines;  ///< what stands on each line
};

/// The picture as it may lie over a frame with continuous corners: transparent beyond them. Shares its pixels
/// with `picture` where no corner is reached.
/// \param radius  of the frame's corners, in its pixels.
/// \param scale   that the picture is shown at, from `center`, in pixels of the frame.
QImage withinRoundFrame(const SubtitlePicture& picture, const QSize& frame, double radius, double scale,
                        const QPointF& center);

/// What subtitles are written with, the installed fonts. The first one of the process may have to read them.
/// Main thread.
class SubtitlePainter {
  public:
    SubtitlePainter();
    ~SubtitlePainter();

    /// Which shapes of Chinese characters the reel's texts call for.
    /// \param language  as EastAsianText::language().
    void setEastAsianLanguage(const std::string& language);

    /// \param text     what is said.
    /// \param frame    pixels of the preview's picture.
    /// \param ratio    pixels for each point of the screen: the preview's shadow is as soft at every size.
    /// \return an empty picture where no font is installed.
    SubtitlePicture draw(const QString& text, const SubtitleSettings& settings, const QSize& frame,
                         qreal ratio) const;

  private:
    const FontLookup& fonts_;
    std::string language_;
    std::optional<std::string> eastAsianFamily_;
};

}  // namespace korvane
