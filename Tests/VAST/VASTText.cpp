#include "VASTText.h"

#include "Settle.h"
#include "VIRLOVASTImpression.h"

#include <gtest/gtest.h>

#include <atomic>

namespace virlo::test
{

std::string marked(const std::string& name, const std::string& text, const std::string& attributes)
{
    return "<" + name + attributes + "><![CDATA[" + text + "]]></" + name + ">";
}

std::string impression(const std::string& url)
{
    return marked("Impression", url);
}

std::string tracking(const std::string& event, const std::string& url)
{
    return "<TrackingEvents>" + marked("Tracking", url, " event='" + event + "'") + "</TrackingEvents>";
}

std::string mediaFile(const std::string& url)
{
    return "<MediaFiles>" + marked("MediaFile", url, " type='video/mp4' width='16' height='9'") +
           "</MediaFiles>";
}

std::string creative(const std::string& attributes, const std::string& content)
{
    return "<Creatives><Creative " + attributes + "><Linear>" + content + "</Linear></Creative></Creatives>";
}

std::string inlineAd(const std::string& identifier, const std::string& content)
{
    return "<Ad id='" + identifier + "'><InLine>" + content + "</InLine></Ad>";
}

std::string wrapperAd(const std::string& identifier, const std::string& target, const std::string& content)
{
    return "<Ad id='" + identifier + "'><Wrapper>" + marked("VASTAdTagURI", target) + content +
           "</Wrapper></Ad>";
}

std::string vast(const std::string& ads)
{
    return "<VAST version='3.0'>" + ads + "</VAST>";
}

VIRLOVASTXMLParser::Advertisements recordsOf(const std::string& document)
{
    VIRLOVASTDocumentReader reader;
    EXPECT_TRUE(reader.parse(document)) << document;
    return reader.advertisements();
}

std::string impressionsOf(const VIRLOVASTAd& ad)
{
    std::string urls;
    for (const auto& impression : ad.impressions()) {
        urls += urls.empty() ? "" : " ";
        urls += impression->url() ? impression->url()->absoluteString() : "(none)";
    }
    return urls;
}

const VIRLOVASTAd& Report::ad() const
{
    static const auto none = VIRLOVASTAd::initWithProperties(XMLAttributes());
    EXPECT_TRUE(ads && ads->size() == 1);
    return ads && ads->size() == 1 ? *ads->front() : *none;
}

Report reportOf(const std::shared_ptr<VIRLOVASTXMLParser>& parser)
{
    struct State {
        Report report;
        std::atomic<int> calls{0};
    };

    const auto state = std::make_shared<State>();
    parser->setCompletionHandler([state](auto ads, const OptionalError& error) {
        if (state->calls == 0)
            state->report = {std::move(ads), error};
        ++state->calls;
    });
    parser->parse();
    EXPECT_TRUE(settle([&] { return state->calls > 0; })) << parser->description() << " never reports";
    settleAll();
    EXPECT_EQ(state->calls, 1);
    return std::move(state->report);
}

Report parse(const std::string& url)
{
    return reportOf(VIRLOVASTXMLParser::initWithVASTURL(URL::fromString(url)));
}

} // namespace virlo::test
