#include "ui/words/WordMetrics.h"

#include <gtest/gtest.h>

#include <QFontMetricsF>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <cmath>
#include <memory>

using korvane::WordMetrics;

namespace {

QStringList hardWords() {
    return {
        QStringLiteral("the"),
        QStringLiteral("WAVE"),
        QStringLiteral("fjord"),
        QStringLiteral("don't"),
        QStringLiteral("¿qué?"),
        QStringLiteral("Straßenbahn"),
        QStringLiteral("œuvre"),
        QStringLiteral("città"),
        QStringLiteral("coração"),
        QStringLiteral("здравствуйте"),
        QStringLiteral("Щёлково"),
        QStringLiteral("你好"),
        QStringLiteral("字幕"),
        QStringLiteral("こんにちは"),
        QStringLiteral("カタカナ"),
        QStringLiteral("안녕하세요"),
        QStringLiteral("مرحبا"),
        QStringLiteral("שלום"),
        QStringLiteral("שָׁלוֹם"),
        QStringLiteral("नमस्ते"),
        QStringLiteral("ภาษาไทย"),
        QStringLiteral("e\u0301te\u0301"),
        QStringLiteral("a\u0302\u0303\u0304\u0308b"),
        QStringLiteral("🎬"),
        QStringLiteral("👩‍👩‍👧"),
        QStringLiteral("🇩🇪"),
        QStringLiteral("ok👍"),
        QStringLiteral("12,345.67"),
        QStringLiteral("מילה-abc"),
        QStringLiteral(" "),
        QString(),
        QString(300, u'W'),
        QStringLiteral("two words"),
    };
}

}  // namespace

TEST(WordMetrics, agreesWithWhatIsDrawnForWordsOfEveryScript) {
    QQmlEngine engine;
    engine.addImportPath(QStringLiteral("qrc:/qt/qml"));
    QQmlComponent component(&engine, QUrl(QStringLiteral("qrc:/qt/qml/Korvane/Words/WordToken.qml")));
    const std::unique_ptr<QObject> object(component.create());
    auto* token = qobject_cast<QQuickItem*>(object.get());
    ASSERT_TRUE(token) << component.errorString().toStdString();
    WordMetrics metrics;
    for (const QString& word : hardWords()) {
        token->setProperty("text", word);
        const QSizeF size = metrics.tokenSize(word);
        EXPECT_EQ(size.width(), token->implicitWidth()) << word.toStdString();
        EXPECT_EQ(size.height(), token->implicitHeight()) << word.toStdString();
    }
}

TEST(WordMetrics, padsBySevenAndFour) {
    WordMetrics metrics;
    const QSizeF empty = metrics.tokenSize(QString());
    EXPECT_EQ(empty.width(), 14);
    EXPECT_EQ(empty.height(), std::ceil(QFontMetricsF(WordMetrics::font()).height()) + 8);
    EXPECT_EQ(WordMetrics::font().pixelSize(), 13);
}

TEST(WordMetrics, measuresAKnownWordTheSameAgain) {
    WordMetrics metrics;
    const QSizeF first = metrics.tokenSize(QStringLiteral("again"));
    EXPECT_EQ(metrics.tokenSize(QStringLiteral("again")), first);
    metrics.forget();
    EXPECT_EQ(metrics.tokenSize(QStringLiteral("again")), first);
}

TEST(WordMetrics, showsLineBreaksAsBlanks) {
    EXPECT_EQ(WordMetrics::shown(QStringLiteral("a\nb\tc\u2028d")), QStringLiteral("a b c d"));
    EXPECT_EQ(WordMetrics::shown(QStringLiteral("plain")), QStringLiteral("plain"));
}
