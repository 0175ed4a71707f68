#include "platform/layers/EastAsianText.h"

#include <QString>

namespace korvane {

void EastAsianText::add(const std::string& text) {
    for (const QChar c : QString::fromStdString(text)) {
        hasKana_ = hasKana_ || (c.unicode() >= 0x3041 && c.unicode() <= 0x30FF);
        hasHangul_ = hasHangul_ || c.script() == QChar::Script_Hangul;
    }
}

}  // namespace korvane
