// Gives a file new content in one step: whoever reads it sees all of the old or all of the new.
#pragma once

#include <QByteArray>
#include <QString>

namespace korvane {

/// Writes beside the file under a name of its own and moves that into place, without waiting for the disk. A
/// link stays one, and what it points to is replaced; the file's permissions stay, those of a new file are
/// the user's own. \return false when nothing has changed: the folder can't be written, the disk is full, a
/// folder is in the way.
bool replaceFile(const QString& path, const QByteArray& content);

}  // namespace korvane
