#pragma once

#include "Press.h"

#include <vector>

namespace virlo
{

/// Something that hears of presses. A press goes to the focused view first; who does not override an
/// operation passes it on to the next responder: a view to its view controller if it is that controller's
/// view, else to its superview; a view controller to the superview of its view. Arrow presses move the focus
/// and are not delivered. Every press that began ends once: as ended on key up, or as cancelled where the key
/// up cannot come any more (the screen is dismissed, the window loses the keys, the view that began it is
/// gone: then the next responder up hears of it). A key held down does not repeat a press. Main thread.
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
