#pragma once

namespace virlo::test
{

/// Names each row of a parameterised test by its member `name`: the last argument of
/// INSTANTIATE_TEST_SUITE_P.
inline constexpr auto rowName = [](const auto& row) { return row.param.name; };

} // namespace virlo::test
