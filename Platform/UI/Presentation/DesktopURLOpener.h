#pragma once

#include "Application.h"

#include <sys/types.h>

#include <vector>

namespace virlo
{

/// Opens URLs by the desktop's `xdg-open`. Unlike QDesktopServices it may be called off the main thread and
/// reports a refusal: it waits some seconds for the command's exit status and takes a command that still runs
/// (a browser in the foreground) for success. Relative URLs and local files are refused: a server must not
/// name them.
class DesktopURLOpener : public URLOpener
{
public:
    bool open(const URL& url) override;

private:
    void reap();

    std::vector<pid_t> m_running;
};

} // namespace virlo
