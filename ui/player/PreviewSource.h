// What is being played, as far as a view needs to know: where its pictures can be had. Whoever owns the
// player offers one for as long as the screen lives; players come and go behind it. Main thread only.
#pragma once

#include <QtQml/qqmlregistration.h>
#include <QObject>
#include <memory>

#include "platform/av/PlayerFrames.h"

namespace korvane {

class PreviewSource : public QObject {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by whoever owns the player")

  public:
    using QObject::QObject;

    /// Who gets the pictures of the player that there is now, beginning with the one shown now; null: nobody.
    /// Nothing happens while there is no player.
    virtual void setFrameConsumer(std::shared_ptr<FrameConsumer> consumer) = 0;

    /// Pixels that pictures are to be shown in, both positive. Nothing happens while there is no player.
    virtual void setFrameSize(int width, int height) = 0;

  Q_SIGNALS:
    /// The player is a different object now, or gone. A view forgets its picture and sets consumer and size
    /// anew; never sent for the player that it has already.
    void sourceChanged();
};

}  // namespace korvane
