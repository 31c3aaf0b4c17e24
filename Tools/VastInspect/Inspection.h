#pragma once

#include "AdsReport.h"
#include "InspectOptions.h"

/// One run of the tool. Returns when the document and all those behind its wrappers are read.
namespace Inspection
{

struct Outcome {
    AdsReport::JSON report;
    bool hasError = false;
};

[[nodiscard]] Outcome run(const InspectOptions& options);

} // namespace Inspection
