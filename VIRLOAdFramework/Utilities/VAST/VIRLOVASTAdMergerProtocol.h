#pragma once

#include "Error.h"

#include <functional>
#include <memory>

class VIRLOVASTAd;
class VIRLOVASTWrapperAd;

/// What resolves one wrapper ad for a parser. Made for it and used once; any thread.
class VIRLOVASTAdMergerProtocol
{
public:
    /// The ad that takes the wrapper's place, or null where the wrapper is to stay, and an error or nothing.
    using Completion = std::function<void(std::shared_ptr<VIRLOVASTAd>, const virlo::OptionalError&)>;

    virtual ~VIRLOVASTAdMergerProtocol() = default;

    /// Calls `completion` exactly once, on a thread of its own choice and never on the caller's stack.
    virtual void retrieveAndMergeWithCompletion(Completion completion) = 0;
};

/// Makes the merger of one wrapper ad. The ad outlives the merger's work.
using VIRLOVASTAdMergerClass =
    std::function<std::shared_ptr<VIRLOVASTAdMergerProtocol>(const std::shared_ptr<VIRLOVASTWrapperAd>&)>;
