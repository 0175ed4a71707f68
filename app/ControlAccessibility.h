// What assistive technology is told of a control that is switched off. The toolkit's own description of an
// item leaves it out, so a person who can't see the faint button would press it in vain.
#pragma once

namespace korvane {

/// Before the first window is made; once.
void installControlAccessibility();

}  // namespace korvane
