// virlo-adhost: holds the ad library and its window in a process of its own, for hosts in any language:
// JSON-RPC 2.0 on standard input and output (docs/hosts.md).

#include "AdHost.h"
#include "LineChannel.h"

#include <VIRLOAdFramework/Application.h>
#include <VIRLOAdFramework/SystemLog.h>

#include <QCommandLineParser>
#include <QGuiApplication>

#include <csignal>
#include <cstdio>
#include <unistd.h>

namespace
{
/// "1280x720"; empty for anything else.
QSize sizeIn(const QString& text)
{
    int width = 0;
    int height = 0;
    char rest = 0;
    const bool isSize = std::sscanf(text.toUtf8().constData(), "%dx%d%c", &width, &height, &rest) == 2;
    return isSize ? QSize(width, height) : QSize();
}
} // namespace

int main(int count, char** arguments)
{
    std::signal(SIGPIPE, SIG_IGN); // a host that has gone is the end of the output
    // The host tells of its own life cycle; the window of an ad comes and goes.
    virlo::Application::setFollowsWindows(false);
    QGuiApplication application(count, arguments);
    QGuiApplication::setQuitOnLastWindowClosed(false);
    QCommandLineParser options;
    options.setApplicationDescription("Shows ads for a host program that speaks JSON-RPC 2.0, one object a "
                                      "line, on its standard input and output.");
    options.addHelpOption();
    options.addOption({"size", "Show ads in a window of this size instead of on the whole screen.", "WxH"});
    options.process(application);
    const QSize size = sizeIn(options.value("size"));
    if (options.isSet("size") && size.isEmpty()) {
        std::fputs("virlo-adhost: --size takes WIDTHxHEIGHT, such as 1280x720\n", stderr);
        return 2;
    }

    // The library logs until the process ends.
    auto& channel = *new LineChannel(STDIN_FILENO, STDOUT_FILENO);
    virlo::setSystemLogSink([&channel](std::string_view line) { channel.writeLog(line); });
    const auto host = std::make_shared<AdHost>(channel, size);
    QObject::connect(&channel, &LineChannel::lineReceived, &application,
                     [&host](const std::string& line) { host->take(line); });
    QObject::connect(&channel, &LineChannel::ended, &application, &QGuiApplication::quit,
                     Qt::QueuedConnection);
    channel.start();
    const int status = QGuiApplication::exec();
    channel.drain();
    return status;
}
