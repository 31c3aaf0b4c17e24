#include "FocusGeometry.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace virlo
{

namespace
{

/// A rectangle by its extent along the heading and across it; `near` to `far` grows ahead.
struct Extent {
    double near;
    double far;
    double low;
    double high;
};

Extent along(FocusHeading heading, const QRectF& r)
{
    switch (heading) {
    case FocusHeading::Left:
        return {-r.right(), -r.left(), r.top(), r.bottom()};
    case FocusHeading::Up:
        return {-r.bottom(), -r.top(), r.left(), r.right()};
    case FocusHeading::Down:
        return {r.top(), r.bottom(), r.left(), r.right()};
    case FocusHeading::Right:
    case FocusHeading::None:
        break;
    }
    return {r.left(), r.right(), r.top(), r.bottom()};
}

} // namespace

int bestFocusCandidate(const QRectF& from, FocusHeading heading, const std::vector<QRectF>& candidates)
{
    // Neighbours that touch or overlap by less than a point, as under a scale, are beside the beam.
    constexpr double leastOverlap = 0.5;
    if (heading == FocusHeading::None)
        return -1;
    const Extent here = along(heading, from);
    int best = -1;
    std::tuple<bool, double, double> bestScore;
    for (std::size_t i = 0; i < candidates.size(); ++i) {
        const Extent there = along(heading, candidates[i]);
        if (there.near <= here.near || there.far <= here.far)
            continue;
        const double ahead = std::max(0.0, there.near - here.far);
        const double across = std::max({0.0, there.low - here.high, here.low - there.high});
        const bool outside = std::min(there.high, here.high) - std::max(there.low, here.low) <= leastOverlap;
        const double offMiddle = std::abs((there.low + there.high) - (here.low + here.high)) / 2;
        const std::tuple score(outside, outside ? ahead + 2 * across : ahead, offMiddle);
        if (best < 0 || score < bestScore) {
            best = static_cast<int>(i);
            bestScore = score;
        }
    }
    return best;
}

} // namespace virlo
