#include "editor/DiagnosticLog.h"

#include <gtest/gtest.h>

namespace korvane {
namespace {

TEST(DiagnosticLog, standardOutputGetsWholeLines) {
    testing::internal::CaptureStdout();
    const DiagnosticLog log = standardOutputLog();
    log("🎬 [Build] one");
    log("🎬 [Build] two");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "🎬 [Build] one\n🎬 [Build] two\n");
}

TEST(DiagnosticLog, theSilentOneWritesNothing) {
    testing::internal::CaptureStdout();
    silentLog()("🎬 [Build] one");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

}  // namespace
}  // namespace korvane
