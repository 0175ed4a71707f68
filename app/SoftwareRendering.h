// Where the machine can't draw with a graphics processor, the window is drawn by the processor instead.
#pragma once

#include <QByteArray>

class QQuickWindow;

namespace korvane {

/// Before the application object is made: where there is no graphics processor, the window is drawn by the
/// software renderer. It draws only what changes; a driver that does a graphics processor's work draws the
/// whole window each time, which no processor does sixty times a second. Leaves alone what a person has
/// chosen by the toolkit's variables.
void drawWithoutGraphicsProcessor();

/// Watches a window that hasn't been shown. When it can't be drawn, or its driver has no graphics processor
/// after all, the program starts itself anew with the software renderer, which can't be chosen any more once
/// a window exists; a second failure ends it with one sentence. \param arguments  main's own.
void fallBackToSoftwareRendering(QQuickWindow& window, char** arguments);

/// Whether a window that can't be drawn by this renderer may be drawn by the software one.
/// \param backend  $QT_QUICK_BACKEND; empty: the graphics processor's.
bool canFallBack(const QByteArray& backend);

/// Whether nobody has chosen a renderer: then it is ours to choose.
bool isRendererOurChoice();

}  // namespace korvane
