#pragma once

/// A cell of the grid that takes another shape while it has the focus. Main thread.
class KSTVResizableGridItem
{
public:
    virtual ~KSTVResizableGridItem() = default;
    virtual void resizeWithFocus(bool focused) = 0;
};
