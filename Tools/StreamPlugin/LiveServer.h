#pragma once

#include "EventStream.h"
#include "FrameStore.h"

#include <QString>

#include <httplib.h>

#include <cstdint>
#include <functional>
#include <thread>

/// Frames and events over plain HTTP on 127.0.0.1, and keys the other way. Takes its own address as Host and
/// the inspector page's as Origin, and posts only with that Origin. A port that cannot be had is logged and
/// leaves the host as it is.
///
///     GET  /live?width=640    multipart/x-mixed-replace of JPEG frames, as fast as they are read
///     GET  /frame?width=640   one frame
///     GET  /events            server-sent events: see EventStream
///     POST /key               {"key": "Left", "down": true, "repeat": false}; without "down" down and up
///     POST /ask               {"placement": "LevelUp"}: 204, or 404 where the host offers no such thing
class LiveServer
{
public:
    struct Key {
        int code;
        bool down;
        bool up;
        bool isRepeat;
    };

    /// Called on the server's threads. `ask` returns whether the host takes it.
    struct Host {
        std::function<void(Key)> press;
        std::function<bool(const QString&)> ask;
    };

    LiveServer(FrameStore& frames, EventStream& events, Host host);
    ~LiveServer();
    LiveServer(const LiveServer&) = delete;
    LiveServer& operator=(const LiveServer&) = delete;

    [[nodiscard]] bool start(std::uint16_t port, std::uint16_t page);

private:
    [[nodiscard]] bool isAdmitted(const httplib::Request& request, httplib::Response& response) const;
    void sendFrames(const httplib::Request& request, httplib::Response& response);
    void sendEvents(httplib::Response& response);
    void takeKey(const httplib::Request& request, httplib::Response& response) const;

    FrameStore& m_frames;
    EventStream& m_events;
    const Host m_host;
    httplib::Server m_server;
    std::string m_ownHost;
    std::string m_page;
    std::thread m_thread;
};
