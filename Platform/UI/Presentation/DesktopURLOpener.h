#pragma once

#include "Application.h"

#include <sys/types.h>

#include <vector>

namespace virlo
{

/// Opens URLs by the desktop's `xdg-open`. Unlike QDesktopServices it may be called off the main thread and
/// hears of a refusal: it waits for the command's answer for some seconds and takes a command that still runs
/// (a browser in the foreground) for success. Nothing is opened for a relative URL or a local file, which a
/// server has no business to name.
class DesktopURLOpener : public URLOpener
{
public:
    bool open(const URL& url) override;

private:
    void reap();

    std::vector<pid_t> m_running;
};

} // namespace virlo
