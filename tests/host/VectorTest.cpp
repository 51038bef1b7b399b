// Vectors: every operation against numbers that can be worked out on paper.
#include "Support.h"

#include <cmath>
#include <limits>

using ::testing::ElementsAre;
using ::testing::FloatEq;
using ::testing::IsNan;

TEST(Vector, IsZeroWhenNew)
{
    EXPECT_THAT(components(qVector()), ElementsAre(0, 0, 0));
}

TEST(Vector, TakesItsComponentsInTheOrderXYZ)
{
    qVector v(1, 2, 3);
    EXPECT_EQ(v[0], 1);
    EXPECT_EQ(v[1], 2);
    EXPECT_EQ(v[2], 3);
}

TEST(Vector, SetAssignsAllComponentsAndReturnsOne)
{
    qVector v(1, 2, 3);
    EXPECT_EQ(v.set(4, 5, 6), 1);
    EXPECT_THAT(components(v), ElementsAre(4, 5, 6));
}

TEST(Vector, CopyAssignsAndSharesNothing)
{
    qVector source(1, 2, 3), v;
    v.copy(source);
    source.set(0, 0, 0);
    EXPECT_THAT(components(v), ElementsAre(1, 2, 3));

    qVector constructed(v);
    v[1] = 9;
    EXPECT_THAT(components(constructed), ElementsAre(1, 2, 3));
    EXPECT_THAT(components(v), ElementsAre(1, 9, 3));
}

TEST(Vector, AddAndSubWorkInPlaceAndReturnOne)
{
    qVector v(1, 2, 3);
    EXPECT_EQ(v.add(qVector(10, 20, 30)), 1);
    EXPECT_THAT(components(v), ElementsAre(11, 22, 33));
    EXPECT_EQ(v.sub(qVector(1, 2, 4)), 1);
    EXPECT_THAT(components(v), ElementsAre(10, 20, 29));
}

TEST(Vector, MayBeItsOwnOperand)
{
    qVector doubled(1, 2, 3), gone(1, 2, 3), crossed(1, 2, 3);
    doubled.add(doubled);
    gone.sub(gone);
    crossed.cross(crossed);
    EXPECT_THAT(components(doubled), ElementsAre(2, 4, 6));
    EXPECT_THAT(components(gone), ElementsAre(0, 0, 0));
    EXPECT_THAT(components(crossed), ElementsAre(0, 0, 0));
}

// x × y = z, y × z = x, z × x = y: this is the left factor.
TEST(Vector, CrossIsThisTimesOther)
{
    qVector x(1, 0, 0), y(0, 1, 0), z(0, 0, 1);
    x.cross(qVector(0, 1, 0));
    y.cross(qVector(0, 0, 1));
    z.cross(qVector(1, 0, 0));
    EXPECT_THAT(components(x), ElementsAre(0, 0, 1));
    EXPECT_THAT(components(y), ElementsAre(1, 0, 0));
    EXPECT_THAT(components(z), ElementsAre(0, 1, 0));
}

// (1, 2, 3) × (4, 5, 6) = (2·6 - 3·5, 3·4 - 1·6, 1·5 - 2·4); the other order turns every sign
TEST(Vector, CrossOfGeneralVectorsAndItsTwin)
{
    qVector a(1, 2, 3), b(4, 5, 6);
    a.cross(b);
    EXPECT_THAT(components(a), ElementsAre(-3, 6, -3));
    b.cross(qVector(1, 2, 3));
    EXPECT_THAT(components(b), ElementsAre(3, -6, 3));
}

TEST(Vector, ScalarProductSumsTheProducts)
{
    EXPECT_EQ(qVector(1, 2, 3).dotProd(qVector(4, -5, 6)), 4 - 10 + 18);
}

// In single precision 1e8 + 1 = 1e8 (steps of 8 there), so x + y + z in this order gives 0, any
// other order or precision 1.
TEST(Vector, ScalarProductIsSummedInSinglePrecisionXFirst)
{
    EXPECT_EQ(qVector(1e8f, 1, -1e8f).dotProd(qVector(1, 1, 1)), 0);
}

// 3² + 4² + 12² = 13²
TEST(Vector, MagnitudeIsTheEuclideanLength)
{
    EXPECT_EQ(qVector(3, -4, 12).mag(), 13);
    EXPECT_EQ(qVector().mag(), 0);
}

// (1e20)² is beyond single precision.
TEST(Vector, MagnitudeSquaresInSinglePrecision)
{
    EXPECT_EQ(qVector(1e20f, 0, 0).mag(), std::numeric_limits<float>::infinity());
}

TEST(Vector, NormalizeDividesByTheLength)
{
    qVector v(0, -3, 4);
    v.normalize();
    EXPECT_THAT(components(v), ElementsAre(0, FloatEq(-0.6f), FloatEq(0.8f)));
}

TEST(Vector, NormalizeTurnsAZeroVectorIntoNotANumberThroughout)
{
    qVector v;
    v.normalize();
    EXPECT_THAT(components(v), ElementsAre(IsNan(), IsNan(), IsNan()));
}

TEST(Vector, ScaleMultipliesEveryComponent)
{
    qVector v(1, -2, 4);
    v.scale(-0.5f);
    EXPECT_THAT(components(v), ElementsAre(-0.5f, 1, -2));
}

TEST(Vector, SumIsAValueOfItsOwn)
{
    const qVector a(1, 2, 3), b(10, 20, 30);
    qVector sum = a + b;
    EXPECT_THAT(components(sum), ElementsAre(11, 22, 33));
    EXPECT_THAT(components(a), ElementsAre(1, 2, 3));
    EXPECT_THAT(components(b), ElementsAre(10, 20, 30));
}
