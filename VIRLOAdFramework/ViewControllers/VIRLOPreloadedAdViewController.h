#pragma once

#include "Error.h"

#include <functional>

/// Adopted by screens that load images or videos before they are shown.
class VIRLOPreloadedAdViewController
{
public:
    using Completion = std::function<void(const virlo::OptionalError&)>;

    virtual ~VIRLOPreloadedAdViewController() = default;

    /// Called once, before the screen is presented, on any thread; returns at once. `completion` is called
    /// exactly once, on a worker; the screen lives at least until then.
    virtual void preloadAdElementsWithCompletion(Completion completion) = 0;
};
