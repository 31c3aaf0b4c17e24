#include "AdServer.h"
#include "TemporaryFolder.h"

#include <gtest/gtest.h>

#include <QProcess>
#include <QRandomGenerator>

namespace
{

/// A host may end at any moment: no crash, no hang, no report of a sanitizer.
class QuittingHost : public testing::TestWithParam<const char*>
{
};

TEST_P(QuittingHost, endsCleanlyAtAnyMoment)
{
    virlo::test::TemporaryFolder folder;
    adserver::AdServerOptions options;
    options.stateFolder = folder.path("server");
    options.campaignsFolder = VIRLO_CAMPAIGNS;
    adserver::AdServer server(options);
    server.start();

    // From before the first thread is made, over handshakes and GStreamer's start, to a playing video.
    for (const int moment : {0, 5, 30, 80, 150, 300, 600, 1200}) {
        const int milliseconds = moment + QRandomGenerator::global()->bounded(1 + moment / 4);
        SCOPED_TRACE(testing::Message() << "after " << milliseconds << " ms");
        QProcess host;
        host.start(VIRLO_QUITTING_HOST, {QString::fromStdString(server.baseURL()),
                                         QString::fromStdString(server.authorityFile().string()),
                                         QString::number(milliseconds), GetParam()});
        ASSERT_TRUE(host.waitForFinished(30'000)) << "the host hangs";
        EXPECT_EQ(host.exitStatus(), QProcess::NormalExit);
        EXPECT_EQ(host.exitCode(), 0) << host.readAllStandardError().toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(Ways, QuittingHost, testing::Values("quit", "exit", "close"),
                         [](const auto& way) { return std::string(way.param); });

} // namespace
