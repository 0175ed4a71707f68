// Where the machine can't draw with its graphics processor, the window is drawn by the processor instead.
#pragma once

#include <QByteArray>

class QQuickWindow;

namespace korvane {

/// Watches a window that hasn't been shown. When it can't be drawn, the program starts itself anew with the
/// software renderer, which can't be chosen any more once a window exists; a second failure ends it with one
/// sentence. \param arguments  main's own.
void fallBackToSoftwareRendering(QQuickWindow& window, char** arguments);

/// Whether a window that can't be drawn by this renderer may be drawn by the software one.
/// \param backend  $QT_QUICK_BACKEND; empty: the graphics processor's.
bool canFallBack(const QByteArray& backend);

}  // namespace korvane
