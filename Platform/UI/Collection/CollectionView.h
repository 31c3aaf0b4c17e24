#pragma once

#include "CollectionViewProtocols.h"
#include "View.h"

#include <QPointer>
#include <QVariantMap>

#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace virlo
{

class CollectionSlot;

/// A scrolling grid of cells in one section, over Qt Quick's ListView: as many cells exist as fill the view
/// and a line on either side, and each is used for one item after another. In QML it is the type
/// CollectionView of Virlo.UI, which adds the ListView, one line of cells an element, to this class. Main
/// thread.
///
/// Arrow keys move the focus from cell to cell; the view scrolls so that the line of the focused cell is the
/// first.
class CollectionView : public virlo::View
{
    Q_OBJECT
    QML_NAMED_ELEMENT(CollectionViewBase)
    Q_PROPERTY(QObject* lines READ lines CONSTANT FINAL)
    Q_PROPERTY(int columns MEMBER m_columns NOTIFY columnsChanged FINAL)
    Q_PROPERTY(QQuickItem* list READ list WRITE setList NOTIFY listChanged FINAL)
    Q_PROPERTY(QVariantMap cells MEMBER m_cells FINAL)
    Q_PROPERTY(int focusedRow READ focusedRow NOTIFY focusedRowChanged FINAL)

public:
    explicit CollectionView(QQuickItem* superview = nullptr);
    ~CollectionView() override;

    void setDataSource(std::weak_ptr<CollectionViewDataSource> source) { m_dataSource = std::move(source); }

    void setDelegate(std::weak_ptr<CollectionViewDelegate> delegate) { m_delegate = std::move(delegate); }

    /// Asks for the number of items and for the cells anew.
    void reloadData();
    /// For new items behind the others: what is shown stays where it is.
    void insertItemsAtIndexPaths(const std::vector<IndexPath>& paths);

    [[nodiscard]] int numberOfItems() const noexcept { return m_count; }

    /// A cell of the kind named in `cells` (reuse identifier to Component) for the row being filled; null,
    /// with an error in the log, for another kind.
    [[nodiscard]] CollectionViewCell*
    dequeueReusableCellWithReuseIdentifierForIndexPath(const std::string& identifier, const IndexPath& path);
    /// Null where the row has no cell at present.
    [[nodiscard]] CollectionViewCell* cellForItemAtIndexPath(const IndexPath& path) const;

    /// -1 until a cell was focused.
    [[nodiscard]] int focusedRow() const noexcept { return m_focusedRow; }

    /// The last focused cell, or else the first one.
    [[nodiscard]] View* preferredFocusedView() override;
    void didUpdateFocusInContextWithAnimationCoordinator(const FocusUpdateContext& context,
                                                         FocusAnimationCoordinator& coordinator) override;

    [[nodiscard]] QObject* lines() const;

    [[nodiscard]] QQuickItem* list() const { return m_list; }

    void setList(QQuickItem* list);

signals:
    void columnsChanged();
    void focusedRowChanged();
    void listChanged();

protected:
    void updatePolish() override;
    void didMoveToWindow() override;
    void geometryChange(const QRectF& now, const QRectF& before) override;

private slots:

    void listDidScroll() { polish(); }

private:
    friend class CollectionSlot;
    class Lines;

    [[nodiscard]] CollectionViewCell* cellFor(CollectionSlot& slot);

    [[nodiscard]] int linesFor(int count) const { return (count + m_columns - 1) / m_columns; }

    [[nodiscard]] CollectionViewCell* makeCell(const std::string& identifier, CollectionSlot& slot);
    void slotDidEnter(CollectionSlot& slot);
    void slotDidLeave(CollectionSlot& slot);
    void select(int row);

    std::weak_ptr<CollectionViewDataSource> m_dataSource;
    std::weak_ptr<CollectionViewDelegate> m_delegate;
    std::unique_ptr<Lines> m_lines;
    QPointer<QQuickItem> m_list;
    QVariantMap m_cells;
    int m_columns = 1; ///< set before anything is shown
    int m_count = 0;
    std::map<int, CollectionSlot*>
        m_slots; ///< of the rows in the lines that exist; the last line's may have no item
    std::set<int> m_displayed;
    int m_focusedRow = -1;
};

} // namespace virlo
