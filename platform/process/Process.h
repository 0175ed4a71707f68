// How the process itself is set up before anything else runs.
#pragma once

namespace korvane {

/// Call first in main, before there are threads or an application object: missing standard streams lead
/// nowhere instead of into the next file that is opened, a full disk and a closed pipe are errors instead of
/// signals, and text is UTF-8 whatever the environment says.
void prepareProcess();

/// Call once the application object stands, because making it adopts the person's locale: numbers and system
/// messages are the same everywhere.
void settleLocale();

/// While an application object that draws is made, Qt looks into the session's folder, and without one leaves
/// a folder of its own in the temporary folder for good. This lends it one for the time being. One at a time.
class BorrowedRuntimeFolder {
  public:
    BorrowedRuntimeFolder();
    ~BorrowedRuntimeFolder();
    BorrowedRuntimeFolder(const BorrowedRuntimeFolder&) = delete;
    BorrowedRuntimeFolder& operator=(const BorrowedRuntimeFolder&) = delete;

    /// For whoever ends or replaces the process without a return to main. Does nothing when nothing is lent:
    /// the session has its own folder, or none could be made. Main thread.
    static void giveBack();
};

}  // namespace korvane
