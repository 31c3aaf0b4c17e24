#include "KeyboardController.h"

#include "KeyboardKey.h"
#include "TapRecognizer.h"
#include "TextField.h"
#include "WindowPresentation.h"

#include <utility>

namespace virlo
{

namespace
{

constexpr double keyHeight = 80;
constexpr double columnWidth = 141;
constexpr double keyGap = 10;
constexpr double upperMargin = 20;
constexpr double lowerMargin = 60; ///< what a television may cut off
constexpr QColor panelColor(0x0c, 0x10, 0x18);

} // namespace

KeyboardController::KeyboardController(TextField& field, KeyboardLayout layout, DidEnd didEnd)
    : m_layout(std::move(layout))
    , m_field(&field)
    , m_didEnd(std::move(didEnd))
{
}

KeyboardController::~KeyboardController() = default;

double KeyboardController::top() const
{
    const auto rows = static_cast<double>(m_layout.rows.size());
    return WindowPresentation::canvasHeight - lowerMargin - rows * (keyHeight + keyGap) + keyGap -
           upperMargin;
}

void KeyboardController::viewDidLoad()
{
    ViewController::viewDidLoad();
    const auto panel = View::make<View>();
    panel->setBackgroundColor(panelColor);
    panel->setFrame({0, top(), WindowPresentation::canvasWidth, WindowPresentation::canvasHeight - top()});
    const double width = m_layout.columns * (columnWidth + keyGap) - keyGap;
    const double left = (WindowPresentation::canvasWidth - width) / 2;
    double y = upperMargin;
    for (const KeyboardLayout::Row& row : m_layout.rows) {
        addRow(*panel, row, left, y);
        y += keyHeight + keyGap;
    }
    view().addSubview(panel);

    const auto menu = std::make_shared<TapRecognizer>([this] { dismissViewController(); });
    menu->setAllowedPressTypes({PressType::Menu});
    view().addGestureRecognizer(menu);
}

void KeyboardController::addRow(View& panel, const KeyboardLayout::Row& row, double left, double y)
{
    for (const KeyboardLayout::Key& key : row) {
        const double width = key.columns * (columnWidth + keyGap) - keyGap;
        const auto view = View::make<KeyboardKey>(key.text);
        view->setAccessibleName(key.name.isEmpty() ? key.text : key.name);
        view->setFrame({left, y, width, keyHeight});
        view->setPrimaryAction([this, &key] { press(key); });
        panel.addSubview(view);
        if (key.text == m_layout.first)
            m_first = view.get();
        left += width + keyGap;
    }
}

void KeyboardController::press(const KeyboardLayout::Key& key)
{
    using Action = KeyboardLayout::Action;
    if (key.action == Action::Done) {
        m_isDone = true;
        dismissViewController();
        return;
    }
    if (!m_field)
        return;
    switch (key.action) {
    case Action::Insert:
        m_field->insert(key.text);
        break;
    case Action::Domain:
        setDomain(key.text);
        break;
    case Action::Delete:
        m_field->deleteBackward();
        break;
    case Action::Clear:
        m_field->setText({});
        break;
    case Action::Left:
        m_field->moveCursor(-1);
        break;
    case Action::Right:
        m_field->moveCursor(1);
        break;
    case Action::Done:
        break;
    }
}

void KeyboardController::setDomain(const QString& domain)
{
    const QString text = m_field->text();
    m_field->setText(text.left(text.indexOf(u'@')) + domain);
}

void KeyboardController::textTyped(const QString& text)
{
    if (m_field)
        m_field->insert(text);
}

void KeyboardController::viewDidDisappear()
{
    ViewController::viewDidDisappear();
    if (const auto didEnd = std::exchange(m_didEnd, {}))
        didEnd(m_isDone);
}

} // namespace virlo
