#pragma once

#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

#include <map>
#include <string>

namespace virlo
{

class CollectionView;
class CollectionViewCell;

/// A place of a collection that shows one row after another as the collection scrolls. It keeps a cell of
/// each kind that it has shown, so that scrolling makes no objects. Main thread.
class CollectionSlot : public QQuickItem
{
    Q_OBJECT
    Q_MOC_INCLUDE("CollectionView.h")
    QML_ELEMENT
    Q_PROPERTY(int row READ row WRITE setRow FINAL)
    Q_PROPERTY(virlo::CollectionView* collection READ collection WRITE setCollection FINAL)

public:
    explicit CollectionSlot(QQuickItem* parent = nullptr);
    ~CollectionSlot() override;

    /// -1 while it shows none.
    [[nodiscard]] int row() const noexcept { return m_row; }

    void setRow(int row);

    [[nodiscard]] CollectionView* collection() const;
    void setCollection(CollectionView* collection);

    /// Shows the item of its row, or nothing where there is none (yet).
    void fill();

    /// The cell of a kind, made at first; null where the collection has no such kind.
    [[nodiscard]] CollectionViewCell* dequeueCell(const std::string& identifier);

    /// The cell shown, or null.
    [[nodiscard]] CollectionViewCell* cell() const noexcept { return m_cell; }

protected:
    void componentComplete() override;

private:
    void show(CollectionViewCell* cell);

    int m_row = -1;
    QPointer<CollectionView> m_collection;
    std::map<std::string, CollectionViewCell*> m_cells;
    CollectionViewCell* m_cell = nullptr;
};

} // namespace virlo
