#include "VIRLOVASTAd.h"

#include "StringFormat.h"
#include "VIRLOVASTRecord.h"

VIRLOVASTAd::VIRLOVASTAd(const virlo::XMLAttributes& properties)
    : m_identifier(properties.value("id"))
    , m_type("InLine")
{
}

VIRLOVASTAd::VIRLOVASTAd(std::optional<std::string> identifier, const char* type)
    : m_identifier(std::move(identifier))
    , m_type(type)
{
}

std::shared_ptr<VIRLOVASTAd> VIRLOVASTAd::initWithProperties(const virlo::XMLAttributes& properties)
{
    return VIRLOVASTRecord::make<VIRLOVASTAd>(properties);
}

bool VIRLOVASTAd::isEqual(const VIRLOVASTAd& other) const
{
    return VIRLOVASTRecord::isSame(m_identifier, other.m_identifier);
}

std::size_t VIRLOVASTAd::hash() const
{
    return VIRLOVASTRecord::hash(m_identifier);
}

std::string VIRLOVASTAd::description() const
{
    return virlo::format("<VIRLOVASTAd id=%@>", m_identifier);
}
