// Circle: a posed figure whose joints form a circle is shown and refused by the program, which comes to an end.
#include "Program.h"
#include "SmallFigure.h"

using ::testing::HasSubstr;

namespace {

class Circle : public ProgramTest {
protected:
    void SetUp() override
    {
        SmallFigure body = smallBody();
        body.joint("clasp", "right_hand.right_palmcenter", "left_hand.left_palmcenter");
        figure = folder.write("man.figure.json", body.text());
        scene = folder.file("man.json");
        ASSERT_EQ(runProgram({"new-scene", figure, scene}).status, 0);
    }
    std::string figure, scene;
};

TEST_F(Circle, IsRefusedByComputeAndExplainAndNothingIsSaved)
{
    const std::string before = contentOf(scene);
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"compute", scene, "--save", scene}, {"explain", scene, "waist"}}) {
        const ProgramRun run = runProgram(arguments);
        EXPECT_EQ(run.status, 1);
        EXPECT_THAT(run.err, HasSubstr("man.left_wrist lies beyond itself: the joints form a circle"));
    }
    EXPECT_EQ(contentOf(scene), before);
}

TEST_F(Circle, IsShownAsAFigureWithEachSegmentOnce)
{
    const ProgramRun run = runProgram({"figure", figure});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    std::size_t count = 0;
    for (std::size_t at = 0; (at = run.out.find("segment left_hand:", at)) != std::string::npos; ++at)
        ++count;
    EXPECT_EQ(count, 1u);
}

}   // namespace
