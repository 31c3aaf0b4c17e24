#pragma once

#include "IndexPath.h"

namespace virlo
{

class CollectionView;
class CollectionViewCell;

/// What a CollectionView shows. Main thread.
class CollectionViewDataSource
{
public:
    virtual ~CollectionViewDataSource() = default;
    [[nodiscard]] virtual int collectionViewNumberOfItemsInSection(CollectionView& collection,
                                                                   int section) = 0;
    /// A cell that `dequeueReusableCell…` returned for this index path, filled for its item. Cells are also
    /// asked for shortly before they are displayed.
    [[nodiscard]] virtual CollectionViewCell* collectionViewCellForItemAtIndexPath(CollectionView& collection,
                                                                                   const IndexPath& path) = 0;
};

/// Who is told what happens in a CollectionView. Main thread.
class CollectionViewDelegate
{
public:
    virtual ~CollectionViewDelegate() = default;
    /// The cell's next frame is the first that shows a part of it inside the collection.
    virtual void collectionViewWillDisplayCellForItemAtIndexPath(CollectionView& collection,
                                                                 CollectionViewCell& cell,
                                                                 const IndexPath& path) = 0;
    virtual void collectionViewDidSelectItemAtIndexPath(CollectionView& collection,
                                                        const IndexPath& path) = 0;
};

} // namespace virlo
