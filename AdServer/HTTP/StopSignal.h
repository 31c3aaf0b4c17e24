#pragma once

namespace adserver
{

/// Wakes every thread that waits on a socket. Raised once; any thread.
class StopSignal
{
public:
    StopSignal();
    ~StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;

    void raise();

    /// Readable for ever once raised; to be polled only.
    [[nodiscard]] int descriptor() const { return m_descriptor; }

private:
    int m_descriptor;
};

} // namespace adserver
