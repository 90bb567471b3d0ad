#include <platform/Prompt.h>

#include <sstream>

#include <gtest/gtest.h>

#include "system/TerminalPrompt.h"

namespace {

using platform::AskOnTerminal;

int Answer(const char* lines, UINT type) {
    std::istringstream input(lines);
    std::ostringstream output;
    return AskOnTerminal(input, output, "Go on?", type);
}

TEST(TerminalPrompt, TakesTheButtonOrTheHarmlessOne) {
    EXPECT_EQ(Answer("Yes\n", MB_YESNO), IDYES);
    EXPECT_EQ(Answer("  n\n", MB_YESNO), IDNO);
    EXPECT_EQ(Answer("c\n", MB_YESNOCANCEL), IDCANCEL);
    EXPECT_EQ(Answer("o\n", MB_OKCANCEL), IDOK);
    EXPECT_EQ(Answer("what\ny", MB_YESNO | MB_DEFBUTTON2), IDYES) << "it asks again";
    EXPECT_EQ(Answer("a\nb\nd\ny\n", MB_YESNO), IDNO) << "but not for ever";
    EXPECT_EQ(Answer("\n", MB_YESNOCANCEL), IDNO);
    EXPECT_EQ(Answer("", MB_OKCANCEL), IDCANCEL);
    EXPECT_EQ(Answer("", MB_OK), IDOK);
}

TEST(TerminalPrompt, TheTextCannotSteerTheTerminal) {
    std::istringstream input("o\n");
    std::ostringstream output;
    AskOnTerminal(input, output, "f\xFCr\x1B[2J\x9D\nzwei", MB_OK);
    EXPECT_EQ(output.str(), "f\xC3\xBCr\xEF\xBF\xBD[2J\xEF\xBF\xBD\nzwei\n[O]K > ");
}

} // namespace
