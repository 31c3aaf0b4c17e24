#include "VIRLOVASTCreative.h"

#include "LeadingNumber.h"
#include "StringFormat.h"
#include "VIRLOVASTRecord.h"

VIRLOVASTCreative::VIRLOVASTCreative(const virlo::XMLAttributes& properties)
    : m_identifier(properties.value("AdID"))
    , m_sequence(virlo::LeadingNumber::unsignedInteger(properties.value("sequence").value_or("")))
{
}

std::shared_ptr<VIRLOVASTCreative>
VIRLOVASTCreative::initWithProperties(const virlo::XMLAttributes& properties)
{
    return VIRLOVASTRecord::make<VIRLOVASTCreative>(properties);
}

bool VIRLOVASTCreative::isEqual(const VIRLOVASTCreative& other) const
{
    return VIRLOVASTRecord::isSame(m_identifier, other.m_identifier);
}

std::size_t VIRLOVASTCreative::hash() const
{
    return VIRLOVASTRecord::hash(m_identifier);
}

std::string VIRLOVASTCreative::description() const
{
    return virlo::format("<VIRLOVASTCreative id=%@ sequence=%lu>", m_identifier, m_sequence);
}
