#include "VIRLOActionButton.h"

#include "JSONReading.h"

using virlo::JSON;
using virlo::JSONReading::floatNumber;

namespace
{
virlo::Color color(const JSON& dictionary, const char* red, const char* green, const char* blue)
{
    return {floatNumber(dictionary, red) / 255.0F, floatNumber(dictionary, green) / 255.0F,
            floatNumber(dictionary, blue) / 255.0F, 1.0F};
}
} // namespace

VIRLOActionButton::VIRLOActionButton(const JSON& dictionary)
    : m_actionType(virlo::JSONReading::string(dictionary, "actionType"))
    , m_text(virlo::JSONReading::string(dictionary, "text"))
    , m_textColor(color(dictionary, "textRed", "textGreen", "textBlue"))
    , m_backgroundColor(color(dictionary, "backgroundRed", "backgroundGreen", "backgroundBlue"))
    , m_xPosition(floatNumber(dictionary, "xPosition"))
    , m_yPosition(floatNumber(dictionary, "yPosition"))
{
}

std::shared_ptr<VIRLOActionButton> VIRLOActionButton::initWithDictionary(const JSON& dictionary)
{
    return std::shared_ptr<VIRLOActionButton>(new VIRLOActionButton(dictionary));
}
