import QtQuick
import Virlo.UI
import VIRLOAdFramework

VIRLOAdGridLoadMoreCollectionViewCell {
    width: 443
    height: 398
    activityIndicator: indicator

    ActivityIndicatorView {
        id: indicator
        anchors.centerIn: parent
        color: "#3c4f5a"
    }
}
