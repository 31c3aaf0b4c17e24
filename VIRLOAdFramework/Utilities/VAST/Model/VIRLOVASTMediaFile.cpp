#include "VIRLOVASTMediaFile.h"

#include "LeadingNumber.h"
#include "StringFormat.h"

#include <utility>

VIRLOVASTMediaFile::VIRLOVASTMediaFile(std::optional<virlo::URL> url, const virlo::XMLAttributes& properties)
    : m_url(std::move(url))
    , m_type(virlo::valueOf(properties, "type"))
    , m_delivery(virlo::valueOf(properties, "delivery"))
    , m_width(virlo::LeadingNumber::unsignedInteger(virlo::valueOf(properties, "width").value_or("")))
    , m_height(virlo::LeadingNumber::unsignedInteger(virlo::valueOf(properties, "height").value_or("")))
{
}

std::shared_ptr<VIRLOVASTMediaFile>
VIRLOVASTMediaFile::initWithURLAndProperties(std::optional<virlo::URL> url,
                                             const virlo::XMLAttributes& properties)
{
    return std::make_shared<VIRLOVASTMediaFile>(std::move(url), properties);
}

bool VIRLOVASTMediaFile::isEqual(const VIRLOVASTMediaFile& other) const
{
    return m_url && m_url == other.m_url;
}

std::size_t VIRLOVASTMediaFile::hash() const
{
    return std::hash<std::optional<virlo::URL>>{}(m_url);
}

std::string VIRLOVASTMediaFile::description() const
{
    return virlo::format("<VIRLOVASTMediaFile url=%@>", m_url);
}
