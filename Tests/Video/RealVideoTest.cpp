#include "RealVideoTest.h"

#include "GstMediaEngine.h"
#include "Settle.h"
#include "TestSound.h"

#include <fstream>
#include <iterator>

namespace virlo::test
{

RealVideoTest::RealVideoTest()
{
    TestSound::install();
    MediaEngine::setMaker([]() -> MediaEngine* { return new GstMediaEngine; });
}

RealVideoTest::~RealVideoTest()
{
    for (int presses = 0; presses < 2 && !isOver(); ++presses)
        click(Qt::Key_Escape);
    settleAll();
    EXPECT_TRUE(GstMediaEngine::drain(Seconds(20)));
}

void RealVideoTest::serveVideo(const std::string& name, std::string bytes, adserver::AdServerFault fault)
{
    fault.path = "/clip/" + name;
    fault.status = 200;
    fault.body = std::move(bytes);
    fault.contentType = "video/mp4";
    server().setFault(fault);
}

void RealVideoTest::serveClip(const std::string& name, const std::string& file, adserver::AdServerFault fault)
{
    std::ifstream stream(std::string(VIRLO_CLIPS) + "/" + file, std::ios::binary);
    ASSERT_TRUE(stream) << file;
    serveVideo(name, std::string(std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()),
               fault);
}

bool RealVideoTest::closesItself(Seconds limit)
{
    return settle([this] { return isOver(); }, limit);
}

} // namespace virlo::test
