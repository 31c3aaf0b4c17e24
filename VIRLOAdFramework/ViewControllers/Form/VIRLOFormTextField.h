#pragma once

#include "TextField.h"

/// The contact form's text field: its shadow is that of VIRLOFormButton; it looks the same while Select is
/// down. Main thread.
class VIRLOFormTextField : public virlo::TextField
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit VIRLOFormTextField(QQuickItem* superview = nullptr);

    void setHighlighted(bool) override {}

    void
    didUpdateFocusInContextWithAnimationCoordinator(const virlo::FocusUpdateContext& context,
                                                    virlo::FocusAnimationCoordinator& coordinator) override;
};
