#include "Responder.h"

namespace virlo
{

void Responder::pressesBegan(const std::vector<Press>& presses)
{
    if (Responder* next = nextResponder())
        next->pressesBegan(presses);
}

void Responder::pressesEnded(const std::vector<Press>& presses)
{
    if (Responder* next = nextResponder())
        next->pressesEnded(presses);
}

void Responder::pressesCancelled(const std::vector<Press>& presses)
{
    if (Responder* next = nextResponder())
        next->pressesCancelled(presses);
}

} // namespace virlo
