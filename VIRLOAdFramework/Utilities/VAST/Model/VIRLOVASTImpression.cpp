#include "VIRLOVASTImpression.h"

#include "StringFormat.h"

#include <utility>

VIRLOVASTImpression::VIRLOVASTImpression(std::optional<virlo::URL> url,
                                         const virlo::XMLAttributes& properties)
    : m_url(std::move(url))
    , m_identifier(virlo::valueOf(properties, "id"))
{
}

std::shared_ptr<VIRLOVASTImpression>
VIRLOVASTImpression::initWithURLAndProperties(std::optional<virlo::URL> url,
                                              const virlo::XMLAttributes& properties)
{
    return std::make_shared<VIRLOVASTImpression>(std::move(url), properties);
}

bool VIRLOVASTImpression::isEqual(const VIRLOVASTImpression& other) const
{
    return m_url && m_url == other.m_url;
}

std::size_t VIRLOVASTImpression::hash() const
{
    return std::hash<std::optional<virlo::URL>>{}(m_url);
}

std::string VIRLOVASTImpression::description() const
{
    return virlo::format("<VIRLOVASTImpression URL=%@ id=%@>", m_url, m_identifier);
}
