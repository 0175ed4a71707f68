// How the process itself is set up before anything else runs.
#pragma once

namespace korvane::cli {

/// Call first in main, before there are threads or an application object: missing standard streams lead
/// nowhere instead of into the next file that is opened, a full disk and a closed pipe are errors instead of
/// signals, and text is UTF-8 whatever the environment says.
void prepareProcess();

/// Call once the application object stands, because making it adopts the person's locale: numbers and system
/// messages are the same everywhere.
void settleLocale();

}  // namespace korvane::cli
