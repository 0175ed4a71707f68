// How the process itself is set up before anything else runs.
#pragma once

#include <string>

namespace korvane {

/// Call first in main, before there are threads or an application object: missing standard streams lead
/// nowhere instead of into the next file that is opened, a full disk and a closed pipe are errors instead of
/// signals, and text is UTF-8 whatever the environment says.
void prepareProcess();

/// Call once the application object stands, because making it adopts the person's locale: numbers and system
/// messages are the same everywhere.
void settleLocale();

/// While an application object that draws is made, Qt looks into the session's folder, and without one leaves
/// a folder of its own in the temporary folder for good. This lends it one for the time being.
class BorrowedRuntimeFolder {
  public:
    BorrowedRuntimeFolder();
    ~BorrowedRuntimeFolder();
    BorrowedRuntimeFolder(const BorrowedRuntimeFolder&) = delete;
    BorrowedRuntimeFolder& operator=(const BorrowedRuntimeFolder&) = delete;

  private:
    std::string folder_;  ///< empty: the session has its own, or none can be made
};

}  // namespace korvane
