#include "PressDispatcher.h"

#include "TapRecognizer.h"
#include "View.h"

#include <algorithm>
#include <utility>

namespace virlo
{

PressDispatcher::PressDispatcher(View& root) : m_root(&root) {}

bool PressDispatcher::isOnScreen(const View* view) const
{
    return view != nullptr && m_root && view->isDescendantOf(*m_root) && view->isVisible() &&
           view->isEnabled();
}

void PressDispatcher::begin(int key, PressType type, View& first)
{
    if (m_held.count(key) > 0)
        return;
    Held held{type, {}, nullptr, nullptr};
    for (View* view = &first; view != nullptr; view = view == m_root ? nullptr : view->superview()) {
        held.chain.emplace_back(view);
        if (held.recognizer)
            continue;
        for (const auto& recognizer : view->gestureRecognizers()) {
            if (recognizer->allows(type)) {
                held.recognizer = recognizer;
                held.recognizerView = view;
                break;
            }
        }
    }
    const bool taken = held.recognizer != nullptr;
    m_held.emplace(key, std::move(held));
    if (!taken)
        first.pressesBegan({{type}});
}

void PressDispatcher::end(int key)
{
    const auto found = m_held.find(key);
    if (found == m_held.end())
        return;
    const Held held = std::move(found->second);
    m_held.erase(found);
    finish(held, false);
}

void PressDispatcher::cancelAll()
{
    for (const auto& [key, held] : std::exchange(m_held, {}))
        finish(held, true);
}

void PressDispatcher::cancelDelivered()
{
    std::vector<Held> delivered;
    for (auto entry = m_held.begin(); entry != m_held.end();) {
        if (entry->second.recognizer) {
            ++entry;
            continue;
        }
        delivered.push_back(std::move(entry->second));
        entry = m_held.erase(entry);
    }
    for (const Held& held : delivered)
        finish(held, true);
}

void PressDispatcher::finish(const Held& held, bool cancelled)
{
    if (held.recognizer) {
        const View* view = held.recognizerView;
        const bool attached =
            isOnScreen(view) && std::count(view->gestureRecognizers().begin(),
                                           view->gestureRecognizers().end(), held.recognizer) > 0;
        if (attached && !cancelled)
            held.recognizer->perform();
        return;
    }
    const std::vector<Press> presses{{held.type}};
    View* first = held.chain.front();
    if (!cancelled && isOnScreen(first)) {
        first->pressesEnded(presses);
        return;
    }
    for (const QPointer<View>& view : held.chain) {
        if (view) {
            view->pressesCancelled(presses);
            return;
        }
    }
}

} // namespace virlo
