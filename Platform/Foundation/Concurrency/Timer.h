#pragma once

#include "Clock.h"

#include <functional>
#include <memory>

namespace virlo
{

/// A timer whose work runs on the main loop. It uses the clock that is set when it is made. Releasing the
/// last reference invalidates it. Made, used and released on any thread.
class Timer
{
public:
    /// Fires once, `interval` from now.
    [[nodiscard]] static std::shared_ptr<Timer> once(Seconds interval, std::function<void()> work);
    /// Fires every `interval` until invalidated.
    [[nodiscard]] static std::shared_ptr<Timer> repeating(Seconds interval, std::function<void()> work);

    virtual ~Timer() = default;

    /// After this has returned on the main thread the work does not run any more.
    virtual void invalidate() = 0;
    /// False once invalidated, or once a one-shot timer has fired.
    [[nodiscard]] virtual bool isValid() const = 0;
};

} // namespace virlo
