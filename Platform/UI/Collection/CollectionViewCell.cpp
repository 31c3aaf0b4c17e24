#include "CollectionViewCell.h"

#include <utility>

namespace virlo
{

CollectionViewCell::CollectionViewCell(QQuickItem* superview) : Control(superview) {}

bool CollectionViewCell::canBecomeFocused() const
{
    return m_inUse && Control::canBecomeFocused();
}

void CollectionViewCell::setInUse(bool inUse)
{
    // The focus engine asks before each move. Told of every cell that scrolls in or out, it would search the
    // whole screen each time.
    if (std::exchange(m_inUse, inUse) && !inUse && isFocused())
        focusabilityDidChange();
}

} // namespace virlo
