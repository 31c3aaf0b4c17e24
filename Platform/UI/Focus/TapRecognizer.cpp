#include "TapRecognizer.h"

#include <algorithm>
#include <utility>

namespace virlo
{

TapRecognizer::TapRecognizer(std::function<void()> action) : m_action(std::move(action)) {}

void TapRecognizer::setAllowedPressTypes(std::vector<PressType> types)
{
    m_types = std::move(types);
}

bool TapRecognizer::allows(PressType type) const
{
    return std::find(m_types.begin(), m_types.end(), type) != m_types.end();
}

void TapRecognizer::perform() const
{
    if (m_action)
        m_action();
}

} // namespace virlo
