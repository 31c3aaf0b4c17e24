#include "VIRLOVASTAd.h"

#include "StringFormat.h"

VIRLOVASTAd::VIRLOVASTAd(const virlo::XMLAttributes& properties)
    : m_identifier(virlo::valueOf(properties, "id"))
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
    return std::make_shared<VIRLOVASTAd>(properties);
}

bool VIRLOVASTAd::isEqual(const VIRLOVASTAd& other) const
{
    return m_identifier && m_identifier == other.m_identifier;
}

std::size_t VIRLOVASTAd::hash() const
{
    return std::hash<std::optional<std::string>>{}(m_identifier);
}

std::string VIRLOVASTAd::description() const
{
    return virlo::format("<VIRLOVASTAd id=%@>", m_identifier);
}
