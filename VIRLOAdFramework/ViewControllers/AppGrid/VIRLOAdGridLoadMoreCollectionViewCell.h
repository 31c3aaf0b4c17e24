#pragma once

#include "ActivityIndicatorView.h"
#include "CollectionViewCell.h"

/// The cell of a row that has no item. Not shown in practice: there are as many rows as items.
class VIRLOAdGridLoadMoreCollectionViewCell : public virlo::CollectionViewCell
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(virlo::ActivityIndicatorView* activityIndicator MEMBER activityIndicator FINAL)

public:
    using CollectionViewCell::CollectionViewCell;

    virlo::ActivityIndicatorView* activityIndicator = nullptr;
};
