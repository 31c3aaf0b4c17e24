#include "FocusGeometry.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace virlo
{

namespace
{

struct Row {
    std::string name;
    FocusHeading heading;
    std::vector<QRectF> candidates;
    int expected;
};

/// The focused rectangle of every row: 100 × 100 in the middle.
const QRectF from(500, 500, 100, 100);

class FocusGeometry : public testing::TestWithParam<Row>
{
};

TEST_P(FocusGeometry, ReachesTheCandidate)
{
    const Row& row = GetParam();
    EXPECT_EQ(bestFocusCandidate(from, row.heading, row.candidates), row.expected);
}

const std::vector<QRectF> cross{
    {500, 300, 100, 100}, {500, 700, 100, 100}, {300, 500, 100, 100}, {700, 500, 100, 100}};

INSTANTIATE_TEST_SUITE_P(
    Table, FocusGeometry,
    testing::Values(
        Row{"Up", FocusHeading::Up, cross, 0}, Row{"Down", FocusHeading::Down, cross, 1},
        Row{"Left", FocusHeading::Left, cross, 2}, Row{"Right", FocusHeading::Right, cross, 3},
        Row{"NothingAhead", FocusHeading::Up, {{500, 700, 100, 100}}, -1},
        Row{"NoHeading", FocusHeading::None, cross, -1},
        Row{"NearestInTheBeam", FocusHeading::Right, {{900, 500, 100, 100}, {700, 540, 100, 100}}, 1},
        Row{"BeamBeforeNearerBesideIt",
            FocusHeading::Right,
            {{610, 610, 100, 100}, {1700, 510, 100, 100}},
            1},
        Row{"BesideTheBeamWhereItIsEmpty",
            FocusHeading::Right,
            {{700, 900, 100, 100}, {700, 700, 100, 100}},
            1},
        Row{"FarAheadBeforeFarAcross", FocusHeading::Up, {{1000, 390, 100, 100}, {650, 100, 100, 100}}, 1},
        Row{"TheMiddleOneOfTwoEquallyNear",
            FocusHeading::Down,
            {{440, 700, 100, 100}, {520, 700, 100, 100}},
            1},
        Row{"TheEarlierOfEquals", FocusHeading::Down, {{450, 700, 100, 100}, {550, 700, 100, 100}}, 0},
        Row{"TouchingNeighbour", FocusHeading::Right, {{600, 500, 100, 100}}, 0},
        Row{"OverlappingAhead", FocusHeading::Right, {{560, 500, 100, 100}}, 0},
        Row{"AroundIt", FocusHeading::Right, {{400, 400, 400, 400}}, -1},
        Row{"InsideIt", FocusHeading::Right, {{540, 540, 20, 20}}, -1},
        Row{"FullHeightColumn", FocusHeading::Right, {{1700, 0, 120, 1080}, {1500, 0, 100, 100}}, 0},
        Row{"AHairInTheBeamIsBesideIt",
            FocusHeading::Right,
            {{700, 599.8, 100, 100}, {900, 550, 100, 100}},
            1}),
    [](const auto& row) { return row.param.name; });

} // namespace

} // namespace virlo
