#include "ui/player/SubtitlePicture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "editor/VideoEditor.h"
#include "platform/layers/EastAsianText.h"
#include "platform/layers/LayerRenderer.h"
#include "platform/layers/TextShape.h"
#include "platform/tasks/QtMainQueue.h"
#include "ui/controls/ContinuousCorner.h"

namespace korvane {
namespace {

const QSize kReel(1080, 1920);

SubtitleSettings style(const char* face, double size, double position = 0.85) {
    SubtitleSettings settings;
    settings.fontPostscriptName = face;
    settings.fontSize = size;
    settings.verticalPosition = position;
    settings.hasShadow = false;
    settings.hasPopAnimation = false;
    return settings;
}

const std::vector<SubtitleSettings>& styles() {
    static const std::vector<SubtitleSettings> all{
        style("HelveticaNeue-Bold", 72),   style("Inter-Bold", 120, 0.0),
        style("Inter-Regular", 33.3, 1.0), style("DejaVuSans-Bold", 160, 0.5),
        style("DejaVuSerif", 91.7, 0.31),  style("LiberationMono", 64)};
    return all;
}

const std::vector<const char*>& texts() {
    static const std::vector<const char*> all{"one",
                                              "and that is why",
                                              "the quick brown fox jumps over the lazy dog",
                                              "Donaudampfschifffahrtsgesellschaftskapitänsmützenabzeichen",
                                              "Well, I — honestly — can't say; “maybe” not",
                                              "wait: 3.14159265358979, 1,000,000 or 50 %?",
                                              "今日はとてもいい天気ですから散歩に行きましょう",
                                              "我们今天要去看一场非常精彩的电影表演",
                                              "오늘은 날씨가 아주 좋아서 산책을 갑니다",
                                              "Сегодня прекрасная погода для прогулки",
                                              "σήμερα ο καιρός είναι πολύ καλός",
                                              "مرحبا بكم في هذا الفيديو الجديد",
                                              "שלום לכולם וברוכים הבאים",
                                              "नमस्ते दोस्तों आज का वीडियो",
                                              "ready 🎬 set 👍🏽 go 🇩🇪 now 1️⃣",
                                              "first line\nsecond line",
                                              "a b c d e f g h i j k l m n o p q r s t u v w x y z"};
    return all;
}

/// What the export draws for a line, at its own size.
class Exported {
  public:
    Exported(const char* text, const SubtitleSettings& settings)
        : tool_(VideoEditor(queue_, silentLog()).buildAnimationLayer({{0.0, 2.0, text}}, settings)) {}

    std::optional<PlacedOverlay> overlay() const {
        LayerRenderer renderer(tool_.parentLayer, tool_.videoLayer,
                               {double(kReel.width()), double(kReel.height())});
        const auto overlays = renderer.overlaysAt(1.0);
        return overlays.empty() ? std::nullopt : std::optional(overlays.front());
    }
    QStringList lines(const std::string& language) const {
        const Layer& layer = *tool_.parentLayer->sublayers.back()->sublayers.front();
        return TextShape(*layer.text, {layer.frame.width, layer.frame.height}, FontLookup(),
                         FontLookup::familyForLanguage(language))
            .lines();
    }

  private:
    QtMainQueue queue_;
    AnimationTool tool_;
};

std::string languageOf(const char* text) {
    EastAsianText found;
    found.add(text);
    return found.language();
}

/// Of coordinates that are added up in another order: an edge may fall on the other side of a sample.
constexpr int kLastBits = 8;

int largestDifference(const QImage& image, const OverlayBitmap& bitmap) {
    int largest = 0;
    for (int y = 0; y < bitmap.height; ++y) {
        const uchar* shown = image.constScanLine(y);
        const auto* exported = bitmap.pixels.data() + static_cast<std::ptrdiff_t>(y) * bitmap.strideBytes;
        for (int i = 0; i < 4 * bitmap.width; ++i)
            largest = std::max(largest, std::abs(shown[i] - exported[i]));
    }
    return largest;
}

TEST(SubtitleCenter, isWhereTheReelHasIt) {
    const auto middle = subtitleCenter(QSizeF(1080, 1920), style("Inter-Bold", 80, 0.5));
    EXPECT_EQ(middle, QPointF(540, 960));
    // At the margins the band of four font sizes touches them.
    EXPECT_EQ(subtitleCenter(QSizeF(1080, 1920), style("Inter-Bold", 80, 0.0)), QPointF(540, 72 + 160));
    EXPECT_EQ(subtitleCenter(QSizeF(1080, 1920), style("Inter-Bold", 80, 1.0)),
              QPointF(540, 1920 - 72 - 160));
}

TEST(SubtitleCenter, scalesWithTheFrame) {
    const auto settings = style("Inter-Bold", 72, 0.85);
    // m = 18, b = 72, u = 480 - 36 - 72 = 372
    EXPECT_EQ(subtitleCenter(QSizeF(270, 480), settings), QPointF(135, 18 + 0.85 * 372 + 36));
}

TEST(SubtitlePicture, atTheReelsSizeEveryPixelIsTheExports) {
    for (const auto& settings : styles()) {
        for (const char* text : texts()) {
            SCOPED_TRACE(settings.fontPostscriptName + ": " + text);
            SubtitlePainter painter;
            painter.setEastAsianLanguage(languageOf(text));
            const auto shown = painter.draw(QString::fromUtf8(text), settings, kReel, 1.0);
            const auto exported = Exported(text, settings).overlay();
            ASSERT_TRUE(exported);
            // The export cuts off what lies beyond the frame, which the preview keeps for its entrance.
            const QRect kept(QPoint(exported->x, exported->y),
                             QSize(exported->bitmap->width, exported->bitmap->height));
            ASSERT_TRUE(QRect(shown.topLeft, shown.image.size()).contains(kept));
            const QImage part = shown.image.copy(kept.translated(-shown.topLeft));
            EXPECT_LE(largestDifference(part, *exported->bitmap), kLastBits);
        }
    }
}

TEST(SubtitlePicture, atEverySizeTheSameWordsStandOnEachLine) {
    int broken = 0;
    for (const auto& settings : styles()) {
        for (const char* text : texts()) {
            SCOPED_TRACE(settings.fontPostscriptName + ": " + text);
            const auto exported = Exported(text, settings).lines(languageOf(text));
            broken += exported.size() > 1 ? 1 : 0;
            SubtitlePainter painter;
            painter.setEastAsianLanguage(languageOf(text));
            for (const QSize size : {QSize(101, 180), QSize(203, 361), QSize(288, 512), QSize(667, 1186)})
                EXPECT_EQ(painter.draw(QString::fromUtf8(text), settings, size, 1.0).lines, exported)
                    << size.width();
        }
    }
    EXPECT_GT(broken, 30) << "texts that are not broken prove nothing";
}

/// The rows and columns that have ink, in the frame.
QRect inkOf(const SubtitlePicture& picture) {
    return {picture.topLeft, picture.image.size()};
}

TEST(SubtitlePicture, aLineStandsInTheMiddleOfItsBand) {
    const SubtitlePainter painter;
    for (const double position : {0.0, 0.25, 0.5, 0.85, 1.0}) {
        const auto settings = style("Inter-Bold", 120, position);
        const QSize frame(540, 960);
        const QRect ink = inkOf(painter.draw(QStringLiteral("HHHH"), settings, frame, 1.0));
        const QPointF center = subtitleCenter(QSizeF(frame), settings);
        EXPECT_NEAR(ink.x() + ink.width() / 2.0, center.x(), 1.0);
        // Capitals stand a little above the middle of a line, which has room for descenders below.
        EXPECT_NEAR(ink.y() + ink.height() / 2.0, center.y(), 0.12 * 60) << position;
        EXPECT_NEAR(ink.height(), 0.727 * 60, 2.0) << "capitals of this face are that part of an em";
    }
}

TEST(SubtitlePicture, linesMayGoBeyondTheBandInBothDirectionsAlike) {
    const SubtitlePainter painter;
    const auto settings = style("Inter-Bold", 100, 0.5);
    const QString text =
        QStringLiteral("HHHHHH HHHHHH HHHHHH HHHHHH HHHHHH HHHHHH HHHHHH HHHHHH HHHHHH HHHHHH HHHHHH HHHHHH");
    const auto picture = painter.draw(text, settings, kReel, 1.0);
    EXPECT_GT(picture.lines.size(), 5);
    EXPECT_GT(picture.image.height(), 4 * 100);
    EXPECT_NEAR(inkOf(picture).center().y(), 960, 15);
}

TEST(SubtitlePicture, theShadowIsBlackAndSoftAndLiesTwoPointsLower) {
    const SubtitlePainter painter;
    auto settings = style("Inter-Bold", 72);
    settings.setTextColor(Color::white());
    const QSize frame(320, 569);
    const QRect plain = inkOf(painter.draw(QStringLiteral("Shadow"), settings, frame, 1.0));
    settings.hasShadow = true;
    // The style's own shadow is the export's.
    settings.setShadowColor({1.0, 0.0, 0.0, 1.0});
    settings.shadowRadius = 1.0;
    const auto shadowed = painter.draw(QStringLiteral("Shadow"), settings, frame, 1.0);
    const QRect soft = inkOf(shadowed);

    const int above = plain.top() - soft.top();
    const int below = soft.bottom() - plain.bottom();
    EXPECT_NEAR(below - above, 2 * 2, 1);
    EXPECT_GT(above, 6);
    EXPECT_LT(below, 3 * 6 + 4);
    const QImage image = shadowed.image;
    const QColor under = image.pixelColor(image.width() / 2, image.height() - above + 1);
    EXPECT_EQ(under.red() + under.green() + under.blue(), 0);
    EXPECT_GT(under.alpha(), 0);
}

TEST(SubtitlePicture, theShadowIsAsManyPointsWideAtEverySizeAndRatio) {
    const SubtitlePainter painter;
    auto settings = style("Inter-Bold", 72);
    const auto growth = [&](const QSize& frame, qreal ratio) {
        settings.hasShadow = false;
        const QRect plain = inkOf(painter.draw(QStringLiteral("Wide"), settings, frame, ratio));
        settings.hasShadow = true;
        return (inkOf(painter.draw(QStringLiteral("Wide"), settings, frame, ratio)).width() - plain.width()) /
               ratio;
    };
    const qreal once = growth(QSize(320, 569), 1.0);
    EXPECT_NEAR(growth(QSize(640, 1138), 2.0), once, 5.0);
    EXPECT_NEAR(growth(QSize(480, 853), 1.5), once, 5.0);
    EXPECT_NEAR(growth(QSize(640, 1138), 1.0), once, 5.0);
}

TEST(SubtitlePicture, nothingToSayOrToDrawOnGivesNothing) {
    const SubtitlePainter painter;
    EXPECT_TRUE(painter.draw(QString(), style("Inter-Bold", 72), kReel, 1.0).image.isNull());
    EXPECT_TRUE(painter.draw(QStringLiteral("  "), style("Inter-Bold", 72), kReel, 1.0).image.isNull());
    EXPECT_TRUE(painter.draw(QStringLiteral("x"), style("Inter-Bold", 72), QSize(), 1.0).image.isNull());
    EXPECT_TRUE(painter.draw(QStringLiteral("x"), style("Inter-Bold", 0), kReel, 1.0).image.isNull());
}

TEST(SubtitlePicture, cornersStayWhereTheyAreWhileALineGrows) {
    const QSize frame(160, 240);
    const QPointF center(80, 100);
    SubtitlePicture picture;
    picture.image = QImage(220, 330, QImage::Format_ARGB32_Premultiplied);
    picture.image.fill(Qt::white);
    picture.topLeft = QPoint(-30, -45);
    const QRectF whole{QPointF(), QSizeF(frame)};
    const QPainterPath outside = continuousRectangle(whole.adjusted(-1, -1, 1, 1), 40);
    const QPainterPath inside = continuousRectangle(whole.adjusted(1, 1, -1, -1), 40);
    for (const double scale : {0.78, 1.0, 1.1}) {
        const QImage cut = withinRoundFrame(picture, frame, 40, scale, center);
        int hidden = 0;
        for (int y = 0; y < cut.height(); ++y) {
            for (int x = 0; x < cut.width(); ++x) {
                const QPointF at =
                    center + scale * (QPointF(x + 0.5, y + 0.5) + QPointF(picture.topLeft) - center);
                if (inside.contains(at)) {
                    ASSERT_EQ(qAlpha(cut.pixel(x, y)), 255) << at.x() << ' ' << at.y();
                }
                if (!whole.contains(at) || outside.contains(at))
                    continue;
                ++hidden;
                ASSERT_EQ(qAlpha(cut.pixel(x, y)), 0) << at.x() << ' ' << at.y();
            }
        }
        EXPECT_GT(hidden, 100);
    }
}

TEST(SubtitlePicture, aLineFarFromTheCornersIsNotCopied) {
    SubtitlePicture picture;
    picture.image = QImage(100, 30, QImage::Format_ARGB32_Premultiplied);
    picture.topLeft = QPoint(30, 100);
    const QImage same = withinRoundFrame(picture, QSize(160, 240), 10, 1.0, QPointF(80, 115));
    EXPECT_EQ(same.cacheKey(), picture.image.cacheKey());
}

}  // namespace
}  // namespace korvane
