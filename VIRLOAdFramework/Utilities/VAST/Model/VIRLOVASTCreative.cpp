#include "VIRLOVASTCreative.h"

#include "LeadingNumber.h"
#include "StringFormat.h"

VIRLOVASTCreative::VIRLOVASTCreative(const virlo::XMLAttributes& properties)
    : m_identifier(virlo::valueOf(properties, "AdID"))
    , m_sequence(virlo::LeadingNumber::unsignedInteger(virlo::valueOf(properties, "sequence").value_or("")))
{
}

std::shared_ptr<VIRLOVASTCreative>
VIRLOVASTCreative::initWithProperties(const virlo::XMLAttributes& properties)
{
    return std::make_shared<VIRLOVASTCreative>(properties);
}

bool VIRLOVASTCreative::isEqual(const VIRLOVASTCreative& other) const
{
    return m_identifier && m_identifier == other.m_identifier;
}

std::size_t VIRLOVASTCreative::hash() const
{
    return std::hash<std::optional<std::string>>{}(m_identifier);
}

std::string VIRLOVASTCreative::description() const
{
    return virlo::format("<VIRLOVASTCreative id=%@ sequence=%lu>", m_identifier, m_sequence);
}
