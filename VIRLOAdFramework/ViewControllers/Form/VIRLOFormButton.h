#pragma once

#include "Button.h"

/// The contact form's button: it casts a shadow below itself while it has the focus and keeps an even halo
/// after. Main thread.
class VIRLOFormButton : public virlo::Button
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit VIRLOFormButton(QQuickItem* superview = nullptr);

    void
    didUpdateFocusInContextWithAnimationCoordinator(const virlo::FocusUpdateContext& context,
                                                    virlo::FocusAnimationCoordinator& coordinator) override;
};
