#pragma once

#include "FocusUpdateContext.h"

#include <QRectF>

#include <vector>

namespace virlo
{

/// The index of the candidate that an arrow key reaches from `from`, or -1. Candidates lie at least partly
/// ahead. Those that overlap the beam straight ahead come first, the nearest first; then the others, by the
/// distance ahead plus twice the distance across. Of equals the one nearer to the middle of the beam, then
/// the earlier one.
[[nodiscard]] int bestFocusCandidate(const QRectF& from, FocusHeading heading,
                                     const std::vector<QRectF>& candidates);

} // namespace virlo
