import Virlo.UI

View {
    backgroundColor: "red"
}
