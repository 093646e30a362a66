#include "Core/AppController/DiagnosticOutput.h"

#include <gtest/gtest.h>

namespace kestrove {
namespace {

TEST(StandardOutput, WritesEachLineWithItsLineBreak) {
    testing::internal::CaptureStdout();
    StandardOutput output;
    output.writeLine("[kestrove] pruned 1 terminated manual source(s)");
    output.writeLine("100 %d");
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "[kestrove] pruned 1 terminated manual source(s)\n100 %d\n");
}

} // namespace
} // namespace kestrove
