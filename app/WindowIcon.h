// The program's sign for task bars that don't find the installed one (korvane.svg, the same drawing).
#pragma once

#include <QIcon>

namespace korvane {

/// Drawn in the sizes that task bars and switchers ask for. Needs the application object.
QIcon windowIcon();

}  // namespace korvane
