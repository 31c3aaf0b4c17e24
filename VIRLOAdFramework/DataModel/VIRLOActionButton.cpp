#include "VIRLOActionButton.h"

#include <algorithm>
#include <limits>

using virlo::JSON;

namespace
{
float floatValue(const JSON& dictionary, const char* key)
{
    constexpr double largest = std::numeric_limits<float>::max();
    return static_cast<float>(std::clamp(virlo::JSONReading::number(dictionary, key), -largest, largest));
}

virlo::Color color(const JSON& dictionary, const char* red, const char* green, const char* blue)
{
    return {floatValue(dictionary, red) / 255.0F, floatValue(dictionary, green) / 255.0F,
            floatValue(dictionary, blue) / 255.0F, 1.0F};
}
} // namespace

VIRLOActionButton::VIRLOActionButton(const JSON& dictionary)
    : m_actionType(virlo::JSONReading::string(dictionary, "actionType"))
    , m_text(virlo::JSONReading::string(dictionary, "text"))
    , m_textColor(color(dictionary, "textRed", "textGreen", "textBlue"))
    , m_backgroundColor(color(dictionary, "backgroundRed", "backgroundGreen", "backgroundBlue"))
    , m_xPosition(floatValue(dictionary, "xPosition"))
    , m_yPosition(floatValue(dictionary, "yPosition"))
{
}

std::shared_ptr<VIRLOActionButton> VIRLOActionButton::initWithDictionary(const JSON& dictionary)
{
    return std::shared_ptr<VIRLOActionButton>(new VIRLOActionButton(dictionary));
}
