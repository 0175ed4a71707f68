// A colour as it is, with an edge that is seen on any card.
import QtQuick
import Korvane.Controls

ContinuousRectangle {
    implicitWidth: 46
    implicitHeight: 22
    radius: 7
    borderWidth: 1
    borderColor: Theme.white(0.28)
}
