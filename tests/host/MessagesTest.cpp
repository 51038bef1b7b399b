// Messages: formatted as printf does, whole, to a sink or to standard error.
#include "DecimalComma.h"
#include "Support.h"

using ::testing::ElementsAre;
using ::testing::IsEmpty;

TEST(Messages, AreFormattedAsPrintfDoes)
{
    MessageLog log;
    error("joint %s: %d of %5.2f%%", "knee", -3, 2.5);
    warning("%-4s|%c|%08x", "ab", 'c', 0xbeefu);
    const auto messages = log.take();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].kind, qcError);
    EXPECT_EQ(messages[0].text, "joint knee: -3 of  2.50%");
    EXPECT_EQ(messages[1].kind, qcWarning);
    EXPECT_EQ(messages[1].text, "ab  |c|0000beef");
}

TEST(Messages, HaveADecimalPointInEveryLocale)
{
    MessageLog log;
    const DecimalComma comma;
    error("%.2f kg", 0.5);
    warning("%g cm", -1.25);
    EXPECT_THAT(log.takeTexts(), ElementsAre("0.50 kg", "-1.25 cm"));
    EXPECT_TRUE(DecimalComma::inForce());   // the process keeps its locale
}

TEST(Messages, ReturnZero)
{
    MessageLog log;
    EXPECT_EQ(error("a"), 0);
    EXPECT_EQ(warning("b"), 0);
}

TEST(Messages, ReachASinkUnchanged)
{
    MessageLog log;
    error("StaticStrength ERROR: with a line break\n");
    error("StaticStrength ERROR: without");
    warning("two lines\nand two breaks\n\n");
    warning("%s", "");
    EXPECT_THAT(log.takeTexts(), ElementsAre("StaticStrength ERROR: with a line break\n",
                                             "StaticStrength ERROR: without", "two lines\nand two breaks\n\n", ""));
}

TEST(Messages, DoNotFormatTheirArgumentsAgain)
{
    MessageLog log;
    error("%s", "100%n %s %d");
    EXPECT_THAT(log.takeTexts(), ElementsAre("100%n %s %d"));
}

TEST(Messages, OfAMegabyteArriveWhole)
{
    MessageLog log;
    const std::string megabyte(1 << 20, 'm');
    error("<%s>", megabyte.c_str());
    EXPECT_EQ(log.takeTexts().at(0), "<" + megabyte + ">");
}

TEST(Messages, OfAMegabyteArriveWholeOnStandardError)
{
    const std::string megabyte(1 << 20, 'm');
    testing::internal::CaptureStderr();
    warning("<%s>", megabyte.c_str());
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "warning: <" + megabyte + ">\n");
}

TEST(Messages, GoToStandardErrorWithTheirKindAndOneFinalLineBreak)
{
    testing::internal::CaptureStderr();
    error("first %d", 1);
    error("second\n");
    warning("third");
    warning("fourth\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "error: first 1\nerror: second\nwarning: third\nwarning: fourth\n");
}

TEST(Messages, PrintNothingToStandardOutput)
{
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    error("an error");
    warning("a warning");
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

TEST(Messages, ASinkReplacesTheEarlierOne)
{
    MessageLog earlier;
    {
        MessageLog later;
        testing::internal::CaptureStderr();
        error("for the later");
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
        EXPECT_THAT(later.takeTexts(), ElementsAre("for the later"));
        EXPECT_THAT(earlier.takeTexts(), IsEmpty());
    }
    testing::internal::CaptureStderr();
    error("for standard error");   // the later one took the sink away when it went
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "error: for standard error\n");
    EXPECT_THAT(earlier.takeTexts(), IsEmpty());
}
