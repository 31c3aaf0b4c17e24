#pragma once

#include "Clock.h"
#include "Export.h"
#include "URL.h"

#include <functional>
#include <optional>

namespace virlo
{

/// Opens URLs outside the app; hosts, demos and tests may provide their own. `open` is called off the main
/// thread, one call at a time, may block, and returns whether something accepted the URL.
class VIRLO_EXPORT URLOpener
{
public:
    virtual ~URLOpener() = default;
    virtual bool open(const URL& url) = 0;
};

/// The app that the library runs in. From the creation of the QGuiApplication on it posts, on the main
/// thread, the notifications of NotificationCenter.h: did become active when the app becomes active; did
/// enter background when it is hidden or suspended, or is inactive with no visible window; will terminate
/// when it is about to quit. After the last one it waits for queued work and running HTTP transfers, for at
/// most `terminationLimit` in all, so that a closing request is sent; the host's `QGuiApplication::exec`
/// returns that much later.
class VIRLO_EXPORT Application
{
public:
    static constexpr Seconds terminationLimit{1.0};

    /// Asks for `url` to be opened. `completion` is called on the main thread, never on the caller's stack,
    /// with whether it was accepted; false for no URL. Any thread, waits for nothing.
    static void openURL(const std::optional<URL>& url, std::function<void(bool accepted)> completion = {});

    /// Null restores the desktop's own opener: it runs `xdg-open`, takes a failure within some seconds for a
    /// refusal, and refuses relative URLs and those of local files. Not owned; it must outlive its last call.
    static void setURLOpener(URLOpener* opener);

    /// False for a program whose windows come and go for another one's sake: it posts did become active and
    /// did enter background itself. True unless set; call it before the application object is made.
    static void setFollowsWindows(bool follows);

    /// Starts the main loop and the notifications: with the application object, or at once where there is
    /// one. The shared library calls it when it is loaded. Any thread; later calls do nothing.
    static void start();
};

} // namespace virlo
