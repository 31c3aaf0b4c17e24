#include "VIRLOVASTMediaFile.h"

#include "LeadingNumber.h"
#include "StringFormat.h"
#include "VIRLOVASTRecord.h"

#include <utility>

VIRLOVASTMediaFile::VIRLOVASTMediaFile(std::optional<virlo::URL> url, const virlo::XMLAttributes& properties)
    : m_url(std::move(url))
    , m_type(properties.value("type"))
    , m_delivery(properties.value("delivery"))
    , m_width(virlo::LeadingNumber::unsignedInteger(properties.value("width").value_or("")))
    , m_height(virlo::LeadingNumber::unsignedInteger(properties.value("height").value_or("")))
{
}

std::shared_ptr<VIRLOVASTMediaFile>
VIRLOVASTMediaFile::initWithURLAndProperties(std::optional<virlo::URL> url,
                                             const virlo::XMLAttributes& properties)
{
    return VIRLOVASTRecord::make<VIRLOVASTMediaFile>(std::move(url), properties);
}

bool VIRLOVASTMediaFile::isEqual(const VIRLOVASTMediaFile& other) const
{
    return VIRLOVASTRecord::isSame(m_url, other.m_url);
}

std::size_t VIRLOVASTMediaFile::hash() const
{
    return VIRLOVASTRecord::hash(m_url);
}

std::string VIRLOVASTMediaFile::description() const
{
    return virlo::format("<VIRLOVASTMediaFile url=%@>", m_url);
}
