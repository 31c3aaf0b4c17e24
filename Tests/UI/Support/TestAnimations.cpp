#include "TestAnimations.h"

#include "Settle.h"

#include <cmath>

namespace virlo::test
{

TestAnimations::TestAnimations()
{
    install();
    m_keeper.start();
}

TestAnimations::~TestAnimations()
{
    m_keeper.stop();
    uninstall();
}

void TestAnimations::advance(Seconds by)
{
    constexpr qint64 frame = 10;
    const qint64 end = m_elapsed + std::llround(by.count() * 1000);
    pumpMainLoop();
    while (m_elapsed < end) {
        m_elapsed = std::min(m_elapsed + frame, end);
        advanceAnimation();
        pumpMainLoop();
    }
}

} // namespace virlo::test
