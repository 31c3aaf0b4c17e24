#pragma once

#include <string>

namespace adserver
{

/// The whole page, its scripts and styles included; one line of text where the build left it out.
extern const std::string inspectorPage;

} // namespace adserver
