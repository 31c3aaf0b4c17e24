#pragma once

#include "Clock.h"

#include <QAbstractAnimation>
#include <QAnimationDriver>

namespace virlo::test
{

/// Qt's animation clock for a test: it stands still until `advance`. In force from its making to its end.
/// Main thread.
class TestAnimations : public QAnimationDriver
{
public:
    TestAnimations();
    ~TestAnimations() override;

    /// Moves the time on by `by` in frames of 10 ms, with the main loop pumped before, between and after.
    void advance(Seconds by);

    [[nodiscard]] qint64 elapsed() const override { return m_elapsed; }

private:
    /// Never ends: when the last animation does, Qt starts its count anew, and the next one would begin with
    /// all the time that has passed here.
    class Keeper : public QAbstractAnimation
    {
    public:
        [[nodiscard]] int duration() const override { return -1; }

    protected:
        void updateCurrentTime(int) override {}
    };

    Keeper m_keeper;
    qint64 m_elapsed = 0;
};

} // namespace virlo::test
