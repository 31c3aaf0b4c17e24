#include "VIRLOVASTWrapperAd.h"

#include "StringFormat.h"

VIRLOVASTWrapperAd::VIRLOVASTWrapperAd(const VIRLOVASTAd& ad) : VIRLOVASTAd(ad.identifier(), "Wrapper") {}

std::shared_ptr<VIRLOVASTWrapperAd> VIRLOVASTWrapperAd::initWithAd(const VIRLOVASTAd& ad)
{
    return std::make_shared<VIRLOVASTWrapperAd>(ad);
}

std::optional<virlo::URL> VIRLOVASTWrapperAd::VASTAdTagURL() const
{
    const std::lock_guard lock(m_mutex);
    return m_VASTAdTagURL;
}

void VIRLOVASTWrapperAd::setVASTAdTagURL(std::optional<virlo::URL> url)
{
    const std::lock_guard lock(m_mutex);
    m_VASTAdTagURL = std::move(url);
}

std::string VIRLOVASTWrapperAd::description() const
{
    return virlo::format("<VIRLOVASTWrapperAd id=%@ URL=%@>", identifier(), VASTAdTagURL());
}
