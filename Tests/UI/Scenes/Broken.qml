import QtQuick
import Virlo.UI

View {
    required property int neverGiven
}
