#include "CollectionView.h"

#include "CollectionSlot.h"
#include "CollectionViewCell.h"
#include "SystemLog.h"

#include <QAbstractListModel>
#include <QQmlComponent>
#include <QQmlEngine>

#include <utility>

namespace virlo
{

/// What the ListView needs to know: how many lines there are.
class CollectionView::Lines : public QAbstractListModel
{
public:
    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override
    {
        return parent.isValid() ? 0 : m_count;
    }

    [[nodiscard]] QVariant data(const QModelIndex&, int) const override { return {}; }

    void reset(int count)
    {
        beginResetModel();
        m_count = count;
        endResetModel();
    }

    void append(int count)
    {
        beginInsertRows({}, m_count, m_count + count - 1);
        m_count += count;
        endInsertRows();
    }

private:
    int m_count = 0;
};

CollectionView::CollectionView(QQuickItem* superview) : View(superview), m_lines(std::make_unique<Lines>()) {}

CollectionView::~CollectionView()
{
    // The slots are destroyed after this part of the object.
    for (const auto& [row, slot] : std::exchange(m_slots, {}))
        slot->setCollection(nullptr);
}

QObject* CollectionView::lines() const
{
    return m_lines.get();
}

void CollectionView::setList(QQuickItem* list)
{
    if (m_list == list)
        return;
    m_list = list;
    connect(list, SIGNAL(contentYChanged()), this, SLOT(listDidScroll()));
    emit listChanged();
}

// Contents

void CollectionView::reloadData()
{
    const auto source = m_dataSource.lock();
    m_displayed.clear();
    m_focusedRow = -1;
    m_count = source ? source->collectionViewNumberOfItemsInSection(*this, 0) : 0;
    m_lines->reset(linesFor(m_count));
    if (m_list)
        QMetaObject::invokeMethod(m_list, "forceLayout");
    focusabilityDidChange();
}

void CollectionView::insertItemsAtIndexPaths(const std::vector<IndexPath>& paths)
{
    const int before = m_count;
    m_count += static_cast<int>(paths.size());
    // The last line may have room.
    for (auto slot = m_slots.lower_bound(before); slot != m_slots.end() && slot->first < m_count;) {
        CollectionSlot* const free = slot->second;
        ++slot;
        free->fill();
    }
    const int more = linesFor(m_count) - linesFor(before);
    if (more <= 0)
        return;
    m_lines->append(more);
    if (m_list)
        QMetaObject::invokeMethod(m_list, "forceLayout");
}

CollectionViewCell*
CollectionView::dequeueReusableCellWithReuseIdentifierForIndexPath(const std::string& identifier,
                                                                   const IndexPath& path)
{
    const auto slot = m_slots.find(static_cast<int>(path.row));
    return slot != m_slots.end() ? slot->second->dequeueCell(identifier) : nullptr;
}

CollectionViewCell* CollectionView::cellForItemAtIndexPath(const IndexPath& path) const
{
    const auto slot = m_slots.find(static_cast<int>(path.row));
    return path.section == 0 && slot != m_slots.end() ? slot->second->cell() : nullptr;
}

CollectionViewCell* CollectionView::makeCell(const std::string& identifier, CollectionSlot& slot)
{
    auto* const component = m_cells.value(QString::fromStdString(identifier)).value<QQmlComponent*>();
    QObject* const object = component != nullptr ? component->beginCreate(qmlContext(this)) : nullptr;
    auto* const cell = qobject_cast<CollectionViewCell*>(object);
    if (cell != nullptr) {
        cell->setParent(&slot);
        cell->setParentItem(&slot);
    }
    if (component != nullptr)
        component->completeCreate();
    if (cell == nullptr) {
        delete object;
        systemLog("A collection has no cell \"" + identifier + "\"" +
                  (component != nullptr ? ": " + component->errorString().toStdString() : "."));
    }
    return cell;
}

// Rows that come and go

CollectionViewCell* CollectionView::cellFor(CollectionSlot& slot)
{
    const auto source = m_dataSource.lock();
    m_slots[slot.row()] = &slot;
    return source && slot.row() < m_count
               ? source->collectionViewCellForItemAtIndexPath(*this, {0, slot.row()})
               : nullptr;
}

void CollectionView::slotDidEnter(CollectionSlot& slot)
{
    // A collection that was empty now has something to focus.
    if (slot.row() == 0)
        slot.cell()->focusabilityDidChange();
    polish();
}

void CollectionView::slotDidLeave(CollectionSlot& slot)
{
    const auto found = m_slots.find(slot.row());
    if (found == m_slots.end() || found->second != &slot)
        return;
    m_slots.erase(found);
    m_displayed.erase(slot.row());
}

/// Once a frame, before it is drawn: the list has cells that cannot be seen yet, and may pass over some in
/// one frame.
void CollectionView::updatePolish()
{
    if (window() == nullptr)
        return;
    std::vector<CollectionSlot*> entered;
    for (const auto& [row, slot] : m_slots) {
        const QRectF place = slot->mapRectToItem(this, QRectF(0, 0, slot->width(), slot->height()));
        if (!place.intersects(boundingRect()))
            m_displayed.erase(row);
        else if (slot->cell() != nullptr && m_displayed.insert(row).second)
            entered.push_back(slot);
    }
    const auto delegate = m_delegate.lock();
    for (CollectionSlot* const slot : entered) {
        if (delegate && slot->cell() != nullptr)
            delegate->collectionViewWillDisplayCellForItemAtIndexPath(*this, *slot->cell(), {0, slot->row()});
    }
}

void CollectionView::didMoveToWindow()
{
    m_displayed.clear();
    polish();
}

void CollectionView::geometryChange(const QRectF& now, const QRectF& before)
{
    View::geometryChange(now, before);
    polish();
}

// Focus and selection

View* CollectionView::preferredFocusedView()
{
    if (m_focusedRow >= 0) {
        if (CollectionViewCell* const last = cellForItemAtIndexPath({0, m_focusedRow}))
            return last;
    }
    return m_slots.empty() ? nullptr : m_slots.begin()->second->cell();
}

void CollectionView::didUpdateFocusInContextWithAnimationCoordinator(const FocusUpdateContext& context,
                                                                     FocusAnimationCoordinator&)
{
    for (const auto& [row, slot] : m_slots) {
        if (slot->cell() == nullptr || slot->cell() != context.nextFocusedView)
            continue;
        if (std::exchange(m_focusedRow, row) != row)
            emit focusedRowChanged();
        return;
    }
}

void CollectionView::select(int row)
{
    if (const auto delegate = m_delegate.lock())
        delegate->collectionViewDidSelectItemAtIndexPath(*this, {0, row});
}

} // namespace virlo
