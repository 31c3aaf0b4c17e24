#include "FocusAnimationCoordinator.h"

#include "Animation.h"

#include <utility>

namespace virlo
{

void FocusAnimationCoordinator::addCoordinatedAnimations(std::function<void()> animations,
                                                         std::function<void()> completion)
{
    if (animations)
        m_animations.push_back(std::move(animations));
    if (completion)
        m_completions.push_back(std::move(completion));
}

void FocusAnimationCoordinator::run()
{
    if (m_animations.empty() && m_completions.empty())
        return;
    Animation::animate(
        duration,
        [animations = std::move(m_animations)] {
            for (const auto& animation : animations)
                animation();
        },
        [completions = std::move(m_completions)](bool) {
            for (const auto& completion : completions)
                completion();
        });
    m_animations.clear();
    m_completions.clear();
}

} // namespace virlo
