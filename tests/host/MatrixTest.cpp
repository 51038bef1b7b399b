// Transforms: the row-vector convention, seen from every operation.
#include "qc/qMatrix.h"

#include "Support.h"

using ::testing::ElementsAre;

namespace {

// A transform of small whole numbers: every product below is exact.
qMatrix transform(const qVector& x, const qVector& y, const qVector& z, const qVector& translation)
{
    qMatrix result;
    for (int j = 0; j < 3; ++j) {
        result.m[0][j] = x[j];
        result.m[1][j] = y[j];
        result.m[2][j] = z[j];
        result.m[3][j] = translation[j];
    }
    return result;
}

// A quarter turn about z that takes x to y, and a shift by 10 along x.
const qMatrix quarterTurn = transform({0, 1, 0}, {-1, 0, 0}, {0, 0, 1}, {0, 0, 0});
const qMatrix shift = transform({1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {10, 0, 0});

qVector moved(qVector point, const qMatrix& by)
{
    qVector result;
    vecmult(&result[0], &point[0], by.m);
    return result;
}

}   // namespace

TEST(Matrix, IsTheIdentityWhenNew)
{
    const qMatrix identity;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 4; ++column)
            EXPECT_EQ(identity.m[row][column], row == column ? 1 : 0) << row << ", " << column;
}

TEST(Matrix, AxesAreRowsAndTheTranslationIsTheLastRow)
{
    const qMatrix m = transform({1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 11, 12});
    EXPECT_THAT(components(m.getAxis(0)), ElementsAre(1, 2, 3));
    EXPECT_THAT(components(m.getAxis(1)), ElementsAre(4, 5, 6));
    EXPECT_THAT(components(m.getAxis(2)), ElementsAre(7, 8, 9));
    EXPECT_THAT(components(m.getTranslation()), ElementsAre(10, 11, 12));
}

TEST(Matrix, SetTranslationChangesInPlaceAndReturnsACopy)
{
    qMatrix m = quarterTurn;
    qMatrix copy = m.setTranslation(qVector(7, 8, 9));
    EXPECT_THAT(components(m.getTranslation()), ElementsAre(7, 8, 9));
    EXPECT_THAT(components(copy.getTranslation()), ElementsAre(7, 8, 9));
    EXPECT_THAT(components(m.getAxis(0)), ElementsAre(0, 1, 0));   // the rotation stays
    EXPECT_THAT(components(copy.getAxis(0)), ElementsAre(0, 1, 0));
    EXPECT_EQ(m.m[3][3], 1);

    copy.setTranslation(qVector(0, 0, 0));
    EXPECT_THAT(components(m.getTranslation()), ElementsAre(7, 8, 9));
}

// (1, 2, 3) · rows + translation: 1·(1, 2, 3) + 2·(4, 5, 6) + 3·(7, 8, 9) + (10, 20, 30)
TEST(Matrix, VecmultTakesAPointAsARowVector)
{
    const qMatrix m = transform({1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 20, 30});
    EXPECT_THAT(components(moved({1, 2, 3}, m)), ElementsAre(40, 56, 72));
}

TEST(Matrix, VecmultMayWriteOverItsPoint)
{
    const qMatrix m = transform({1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 20, 30});
    qVector point(1, 2, 3);
    vecmult(&point[0], &point[0], m.m);
    EXPECT_THAT(components(point), ElementsAre(40, 56, 72));
}

// 1e8 + 1 = 1e8 in single precision: the translation is added last, after the three products.
TEST(Matrix, VecmultAddsTheTranslationLast)
{
    const qMatrix m = transform({1e8f, 0, 0}, {1, 0, 0}, {-1e8f, 0, 0}, {3, 0, 0});
    EXPECT_EQ(moved({1, 1, 1}, m)[0], 3);   // ((1e8 + 1) - 1e8) + 3
}

// Turn, then shift: x goes to y, then to (10, 1, 0). Shift, then turn: (11, 0, 0) goes to (0, 11, 0).
TEST(Matrix, MultAppendsTheOtherTransform)
{
    qMatrix turnThenShift = quarterTurn;
    EXPECT_EQ(turnThenShift.mult(shift), 1);
    EXPECT_THAT(components(moved({1, 0, 0}, turnThenShift)), ElementsAre(10, 1, 0));

    qMatrix shiftThenTurn = shift;
    shiftThenTurn.mult(quarterTurn);
    EXPECT_THAT(components(moved({1, 0, 0}, shiftThenTurn)), ElementsAre(0, 11, 0));
}

TEST(Matrix, MultLeavesTheOtherTransformAndTheLastColumn)
{
    qMatrix m = transform({1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 20, 30});
    const qMatrix other = shift;
    m.mult(other);
    EXPECT_THAT(components(other.getTranslation()), ElementsAre(10, 0, 0));
    for (int row = 0; row < 4; ++row)
        EXPECT_EQ(m.m[row][3], row == 3 ? 1 : 0);
}

// p · (A · B) = (p · A) · B; whole numbers, so to the bit.
TEST(Matrix, MovingByAProductIsMovingTwice)
{
    const qMatrix a = transform({1, 2, 3}, {4, 5, 6}, {7, 8, 9}, {10, 20, 30});
    const qMatrix b = transform({2, 0, 1}, {-1, 3, 2}, {5, -4, 1}, {-7, 8, 9});
    qMatrix product = a;
    product.mult(b);
    const qVector p(3, -2, 5);
    EXPECT_EQ(components(moved(p, product)), components(moved(moved(p, a), b)));
}

// Two quarter turns are a half turn, even when both are one and the same transform.
TEST(Matrix, MultByItselfDoesNotReadWhatItHasWritten)
{
    qMatrix half = quarterTurn;
    half.mult(half);
    EXPECT_THAT(components(moved({1, 2, 3}, half)), ElementsAre(-1, -2, 3));

    qMatrix twice = shift;
    twice.mult(twice);
    EXPECT_THAT(components(moved({1, 2, 3}, twice)), ElementsAre(21, 2, 3));
}
