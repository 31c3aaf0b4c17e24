#pragma once

#include "VideoTest.h"

namespace virlo::test
{

/// Video ads that GStreamer plays, with the clips of the shipped campaigns, which are served below "/clip/".
class RealVideoTest : public VideoTest
{
protected:
    RealVideoTest();
    /// Waits until everything is torn down.
    ~RealVideoTest() override;

    /// A shipped clip under that name on the test's server; `fault` says what goes wrong with it.
    static void serveVideo(const std::string& name, std::string bytes, adserver::AdServerFault fault = {});
    static void serveClip(const std::string& name, const std::string& file,
                          adserver::AdServerFault fault = {});
    [[nodiscard]] bool closesItself(Seconds limit = Seconds(20));
};

} // namespace virlo::test
