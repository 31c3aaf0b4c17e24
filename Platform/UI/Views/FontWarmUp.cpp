#include "FontWarmUp.h"

#include "GlobalQueue.h"
#include "MainLoop.h"
#include "QtWork.h"

#include <QFontMetricsF>

#include <mutex>
#include <utility>
#include <vector>

namespace virlo
{

class FontWarmUp::State
{
public:
    void read()
    {
        const std::lock_guard lock(running);
        const QtWork work;
        if (ended || !work.mayBegin())
            return;
        (void)QFontMetricsF(QFont()).horizontalAdvance(QStringLiteral("x"));
    }

    std::mutex running;
    bool ended = false; ///< under `running`
    // The main thread's:
    bool started = false;
    bool done = false;
    std::vector<std::function<void()>> waiting;
};

FontWarmUp::FontWarmUp() : m_state(std::make_shared<State>()) {}

FontWarmUp::~FontWarmUp()
{
    const std::lock_guard lock(m_state->running);
    m_state->ended = true;
}

void FontWarmUp::start(std::function<void()> done)
{
    if (m_state->done) {
        MainLoop::shared().post(std::move(done));
        return;
    }
    m_state->waiting.push_back(std::move(done));
    if (std::exchange(m_state->started, true))
        return;
    GlobalQueue::standard().async([state = m_state] {
        state->read();
        MainLoop::shared().post([state] {
            state->done = true;
            for (const auto& one : std::exchange(state->waiting, {}))
                one();
        });
    });
}

} // namespace virlo
