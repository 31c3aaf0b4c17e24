#pragma once

#include "Control.h"

namespace virlo
{

class Label;

/// One key of an on-screen keyboard: dark with light text, the other way round while it has the focus. Main
/// thread.
class KeyboardKey : public virlo::Control
{
    Q_OBJECT

public:
    explicit KeyboardKey(const QString& text);

protected:
    void geometryChange(const QRectF& now, const QRectF& before) override;

private:
    void updateLook();

    Label* m_label; ///< a child of this item
};

} // namespace virlo
