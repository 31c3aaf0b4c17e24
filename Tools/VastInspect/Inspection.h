#pragma once

#include "AdsReport.h"
#include "InspectOptions.h"

/// One run of the tool. Waits for the document and all behind it.
namespace Inspection
{

struct Outcome {
    AdsReport::JSON report;
    bool hasError = false;
};

[[nodiscard]] Outcome run(const InspectOptions& options);

} // namespace Inspection
