#include "CollectionSlot.h"

#include "CollectionView.h"
#include "CollectionViewCell.h"

#include <utility>

namespace virlo
{

CollectionSlot::CollectionSlot(QQuickItem* parent) : QQuickItem(parent) {}

CollectionSlot::~CollectionSlot()
{
    if (m_collection)
        m_collection->slotDidLeave(*this);
}

CollectionView* CollectionSlot::collection() const
{
    return m_collection;
}

void CollectionSlot::setCollection(CollectionView* collection)
{
    m_collection = collection;
}

void CollectionSlot::componentComplete()
{
    QQuickItem::componentComplete();
    fill();
}

void CollectionSlot::setRow(int row)
{
    if (row == m_row)
        return;
    if (m_collection)
        m_collection->slotDidLeave(*this);
    m_row = row;
    if (isComponentComplete())
        fill();
}

void CollectionSlot::fill()
{
    show(m_collection && m_row >= 0 ? m_collection->cellFor(*this) : nullptr);
    if (m_cell != nullptr)
        m_collection->slotDidEnter(*this);
}

/// While the slot has no row, its cell stays visible, but out of the focus's reach: the list shows neither.
void CollectionSlot::show(CollectionViewCell* cell)
{
    CollectionViewCell* const before = std::exchange(m_cell, cell);
    if (before != nullptr && before != cell)
        before->setInUse(false);
    if (m_row < 0)
        return;
    for (const auto& [identifier, kind] : m_cells) {
        if (kind != nullptr)
            kind->setVisible(kind == cell);
    }
    if (cell != nullptr)
        cell->setInUse(true);
}

CollectionViewCell* CollectionSlot::dequeueCell(const std::string& identifier)
{
    auto& cell = m_cells[identifier];
    if (cell != nullptr) {
        cell->prepareForReuse();
        return cell;
    }
    cell = m_collection ? m_collection->makeCell(identifier, *this) : nullptr;
    if (cell != nullptr)
        cell->setPrimaryAction([this] {
            if (m_collection)
                m_collection->select(m_row);
        });
    return cell;
}

} // namespace virlo
