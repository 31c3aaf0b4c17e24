#pragma once

#include "Control.h"

/// The featured ad's place for the focus: around the label that looks like its button. Main thread.
class VIRLOAdGridFeaturedView : public virlo::Control
{
    Q_OBJECT
    QML_ELEMENT

public:
    using Control::Control;

    /// Always; before the featured ad is shown it has no width, and so no place on the screen.
    [[nodiscard]] bool canBecomeFocused() const override { return true; }
};
