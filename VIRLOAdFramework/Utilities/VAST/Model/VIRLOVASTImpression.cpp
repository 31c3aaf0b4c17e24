#include "VIRLOVASTImpression.h"

#include "StringFormat.h"
#include "VIRLOVASTRecord.h"

#include <utility>

VIRLOVASTImpression::VIRLOVASTImpression(std::optional<virlo::URL> url,
                                         const virlo::XMLAttributes& properties)
    : m_url(std::move(url))
    , m_identifier(properties.value("id"))
{
}

std::shared_ptr<VIRLOVASTImpression>
VIRLOVASTImpression::initWithURLAndProperties(std::optional<virlo::URL> url,
                                              const virlo::XMLAttributes& properties)
{
    return VIRLOVASTRecord::make<VIRLOVASTImpression>(std::move(url), properties);
}

bool VIRLOVASTImpression::isEqual(const VIRLOVASTImpression& other) const
{
    return VIRLOVASTRecord::isSame(m_url, other.m_url);
}

std::size_t VIRLOVASTImpression::hash() const
{
    return VIRLOVASTRecord::hash(m_url);
}

std::string VIRLOVASTImpression::description() const
{
    return virlo::format("<VIRLOVASTImpression URL=%@ id=%@>", m_url, m_identifier);
}
