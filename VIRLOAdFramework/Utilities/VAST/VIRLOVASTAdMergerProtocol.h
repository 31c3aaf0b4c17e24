#pragma once

#include "Error.h"

#include <functional>
#include <memory>

class VIRLOVASTAd;
class VIRLOVASTWrapperAd;

/// Resolves one wrapper ad for a parser. Made for one wrapper and used once; any thread.
class VIRLOVASTAdMergerProtocol
{
public:
    /// The ad that replaces the wrapper, or null where the wrapper stays, and an error if there was one.
    using Completion = std::function<void(std::shared_ptr<VIRLOVASTAd>, const virlo::OptionalError&)>;

    virtual ~VIRLOVASTAdMergerProtocol() = default;

    /// Calls `completion` exactly once, on any thread and never on the caller's stack.
    virtual void retrieveAndMergeWithCompletion(Completion completion) = 0;
};

/// Makes the merger for one wrapper ad. The ad outlives the merger's work.
using VIRLOVASTAdMergerClass =
    std::function<std::shared_ptr<VIRLOVASTAdMergerProtocol>(const std::shared_ptr<VIRLOVASTWrapperAd>&)>;
