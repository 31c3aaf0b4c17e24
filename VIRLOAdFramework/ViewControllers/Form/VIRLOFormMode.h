#pragma once

#include <QString>

#include <optional>
#include <string>

/// What a contact form asks for: an e-mail address or a phone number. Two constant values; any thread.
class VIRLOFormMode
{
public:
    /// By an action button's type; null for one that asks for nothing.
    [[nodiscard]] static const VIRLOFormMode* ofActionType(const std::optional<std::string>& actionType);

    /// Whether the text is one that may be sent. Takes under a millisecond, whatever the text.
    [[nodiscard]] bool accepts(const QString& text) const;

    const char* placeholder;
    const char* preferenceKey; ///< of the value typed last
    const char* dataKey;       ///< of what is sent
    const char* alert;         ///< for what is not accepted
    const char* pattern;
    bool isPhone;
};
