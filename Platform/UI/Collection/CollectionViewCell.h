#pragma once

#include "Control.h"

#include <string>

namespace virlo
{

/// A cell of a CollectionView; Select selects its item. Made by the collection and then used for one item
/// after another: it can be focused only while it shows one. Main thread.
class CollectionViewCell : public virlo::Control
{
    Q_OBJECT
    QML_ELEMENT

public:
    explicit CollectionViewCell(QQuickItem* superview = nullptr);

    /// Called before the cell is used for another item.
    virtual void prepareForReuse() {}

    /// Whether it shows an item of its collection.
    [[nodiscard]] bool isInUse() const noexcept { return m_inUse; }

    [[nodiscard]] bool canBecomeFocused() const override;

private:
    friend class CollectionSlot;
    void setInUse(bool inUse);

    bool m_inUse = false;
};

} // namespace virlo
