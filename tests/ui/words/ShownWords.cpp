#include "tests/ui/words/ShownWords.h"

#include <QQmlEngine>

#include "ui/controls/Theme.h"

namespace korvane::test {

std::vector<SpeechSegment> numberedWords(int count) {
    std::vector<SpeechSegment> words;
    for (int i = 0; i < count; ++i)
        words.emplace_back("w" + std::to_string(i) + std::string(static_cast<std::size_t>(i * 7 % 11), 'o'),
                           i, i + 1);
    return words;
}

std::vector<SpeechSegment> segments(const std::vector<std::string>& texts) {
    std::vector<SpeechSegment> words;
    for (const std::string& text : texts)
        words.emplace_back(text, 0.0, 1.0);
    return words;
}

ShownWords::ShownWords(std::vector<SpeechSegment> given, QSize size, Part part) : words(std::move(given)) {
    for (int i = 0; i < model.rowCount(); ++i)
        selected.insert(i);
    view.engine()->addImportPath(QStringLiteral("qrc:/qt/qml"));
    view.setColor(Theme::bgTop());
    view.setResizeMode(QQuickView::SizeRootObjectToView);
    view.resize(size);
    QVariantMap properties{{QStringLiteral("words"), QVariant::fromValue(&model)}};
    if (part == Part::card) {
        properties.insert({{QStringLiteral("title"), QStringLiteral("Words")},
                           {QStringLiteral("hasWords"), !words.empty()},
                           {QStringLiteral("emptyText"), QStringLiteral("Nothing yet")},
                           {QStringLiteral("active"), false}});
    }
    view.setInitialProperties(properties);
    view.setSource(QUrl(part == Part::card ? QStringLiteral("qrc:/qt/qml/Korvane/Words/WordsCard.qml")
                                           : QStringLiteral("qrc:/qt/qml/Korvane/Words/WordArea.qml")));
    if (!view.rootObject())
        qFatal("the words can't be shown");
    flow_ = view.rootObject()->findChild<WordFlow*>(QStringLiteral("flow"));
    area_ = part == Part::card ? &item("area") : view.rootObject();
    QObject::connect(flow_, &WordFlow::toggled, [this](int index) {
        toggled.push_back(index);
        if (selected.erase(index) == 0)
            selected.insert(index);
        model.selectionChanged(index, index);
    });
    view.show();
    view.requestActivate();
    if (!QTest::qWaitForWindowActive(&view))
        qFatal("the window does not come up");
    // The pointer may stand anywhere, and what it stands on is lit.
    for (const int y : {2, 1}) {
        QCoreApplication::processEvents();
        QTest::mouseMove(&view, QPoint(size.width() - 1, size.height() - y));
    }
    QCoreApplication::processEvents();
    settle();
}

void ShownWords::replace(std::vector<SpeechSegment> given) {
    words = std::move(given);
    selected.clear();
    for (int i = 0; i < static_cast<int>(words.size()); ++i)
        selected.insert(i);
    model.wordsReplaced();
    settle();
}

void ShownWords::select(std::set<int> chosen) {
    selected = std::move(chosen);
    model.selectionChanged(0, model.rowCount() - 1);
}

void ShownWords::resize(QSize size) {
    view.resize(size);
    if (!QTest::qWaitFor([&] { return view.rootObject()->size() == QSizeF(size); }))
        qFatal("the window keeps its size");
    settle();
}

void ShownWords::settle() {
    if (!QTest::qWaitFor([this] { return flow_->isSettled(); }))
        qFatal("the words never settle");
}

QQuickItem& ShownWords::item(const char* objectName) {
    auto* found = view.rootObject()->findChild<QQuickItem*>(QString::fromLatin1(objectName));
    if (!found)
        qFatal("no item %s", objectName);
    return *found;
}

void ShownWords::scrollTo(double y) {
    area_->setProperty("contentY", y);
    settle();
}

double ShownWords::furthest() const {
    return std::max(0.0, area_->property("contentHeight").toDouble() - area_->height());
}

QRectF ShownWords::inWindow(int index) {
    const WordTokenItem* token = flow_->tokenOf(index);
    if (!token)
        return {};
    return token->mapRectToScene(QRectF({}, token->size()));
}

QPoint ShownWords::middleOf(int index) {
    return inWindow(index).center().toPoint();
}

void ShownWords::click(int index) {
    QTest::mouseClick(&view, Qt::LeftButton, Qt::NoModifier, middleOf(index));
}

void ShownWords::key(Qt::Key key, Qt::KeyboardModifiers modifiers) {
    QTest::keyClick(&view, key, modifiers);
}

QImage ShownWords::picture() {
    return view.grabWindow();
}

}  // namespace korvane::test
