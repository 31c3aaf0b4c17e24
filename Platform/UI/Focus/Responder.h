#pragma once

#include "Press.h"

#include <vector>

namespace virlo
{

/// Handles presses. A press goes to the focused view first; each operation passes it on to the next responder
/// unless overridden: a view to its view controller if it is that controller's view, else to its superview; a
/// view controller to the superview of its view. Arrow presses move the focus and are not delivered. Every
/// press that began ends once: as ended on key up, or as cancelled (the focus moved meanwhile, the screen is
/// dismissed, the window lost the keys, the view that began it is destroyed: then the next responder is
/// told). A key held down does not repeat a press. Main thread.
class Responder
{
public:
    virtual ~Responder() = default;

    virtual void pressesBegan(const std::vector<Press>& presses);
    virtual void pressesEnded(const std::vector<Press>& presses);
    virtual void pressesCancelled(const std::vector<Press>& presses);

    [[nodiscard]] virtual Responder* nextResponder() const = 0;
};

} // namespace virlo
