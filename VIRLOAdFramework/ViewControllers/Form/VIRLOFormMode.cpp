#include "VIRLOFormMode.h"

#include "VIRLOConstans.h"

#include <QRegularExpression>

namespace
{

constexpr const char* emailPattern = R"(^[A-Z0-9a-z._%+-]+@[A-Za-z0-9.-]+\.[A-Za-z]{2,4}$)";
constexpr const char* phonePattern = "^[+]{0,1}[ 0-9()-]{6,}$";

} // namespace

const VIRLOFormMode* VIRLOFormMode::ofActionType(const std::optional<std::string>& actionType)
{
    static const VIRLOFormMode email{"Enter E-mail Address",
                                     VIRLOAdFrameworkPreferencesEmailAddress,
                                     "email",
                                     "Please enter a valid e-mail address.",
                                     emailPattern,
                                     false};
    static const VIRLOFormMode phone{"Enter Phone Number",
                                     VIRLOAdFrameworkPreferencesPhoneNumber,
                                     "phone",
                                     "Please enter a valid phone number.",
                                     phonePattern,
                                     true};
    if (actionType == "CLICK_TO_EMAIL")
        return &email;
    return actionType == "CLICK_TO_CALL" || actionType == "CLICK_TO_SMS" ? &phone : nullptr;
}

bool VIRLOFormMode::accepts(const QString& text) const
{
    const QRegularExpression expression(QString::fromLatin1(pattern),
                                        QRegularExpression::CaseInsensitiveOption);
    return expression.match(text).hasMatch();
}
