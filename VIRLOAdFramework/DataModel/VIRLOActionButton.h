#pragma once

#include "Color.h"
#include "Export.h"
#include "JSON.h"

#include <memory>
#include <optional>
#include <string>

/// The call-to-action button of an ad item: label, colours, position and action. Immutable; any thread.
/// Construction from the server's JSON never fails: a key that is missing or of another type leaves its
/// property empty.
class VIRLO_EXPORT VIRLOActionButton
{
public:
    /// Colours without keys are opaque black, positions 0.
    [[nodiscard]] static std::shared_ptr<VIRLOActionButton> initWithDictionary(const virlo::JSON& dictionary);

    /// "CLICK_TO_APPSTORE", "CLICK_TO_CONTENT", "CLICK_TO_EMAIL", "CLICK_TO_CALL" or "CLICK_TO_SMS"; anything
    /// else opens nothing.
    [[nodiscard]] const std::optional<std::string>& actionType() const noexcept { return m_actionType; }

    [[nodiscard]] const std::optional<std::string>& text() const noexcept { return m_text; }

    /// Not clamped: 510 gives 2.0.
    [[nodiscard]] const virlo::Color& textColor() const noexcept { return m_textColor; }

    [[nodiscard]] const virlo::Color& backgroundColor() const noexcept { return m_backgroundColor; }

    /// Points on the screen; finite.
    [[nodiscard]] double xPosition() const noexcept { return m_xPosition; }

    [[nodiscard]] double yPosition() const noexcept { return m_yPosition; }

private:
    explicit VIRLOActionButton(const virlo::JSON& dictionary);

    std::optional<std::string> m_actionType;
    std::optional<std::string> m_text;
    virlo::Color m_textColor;
    virlo::Color m_backgroundColor;
    double m_xPosition;
    double m_yPosition;
};
