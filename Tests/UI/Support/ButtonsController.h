#pragma once

#include "Button.h"
#include "ViewController.h"

#include <QRectF>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace virlo::test
{

/// A screen of plain buttons, named by letters, that writes down what happens to it.
class ButtonsController : public ViewController
{
public:
    struct Place {
        std::string name;
        QRectF frame;
    };

    explicit ButtonsController(std::vector<Place> places) : m_places(std::move(places)) {}

    /// Null where there is no such button.
    [[nodiscard]] Button* button(const std::string& name)
    {
        for (const auto& one : m_buttons) {
            if (one->accessibleName().toStdString() == name)
                return one.get();
        }
        return nullptr;
    }

    /// The name of the focused button; empty for none.
    [[nodiscard]] std::string focused() const
    {
        for (const auto& one : m_buttons) {
            if (one->isFocused())
                return one->accessibleName().toStdString();
        }
        return {};
    }

    std::vector<std::string> log;
    std::string preferred;
    std::function<bool(const FocusUpdateContext&)> mayMove;
    std::function<void(const FocusUpdateContext&, FocusAnimationCoordinator&)> moved;

    [[nodiscard]] View* preferredFocusedView() override
    {
        View* view = button(preferred);
        return view != nullptr ? view : ViewController::preferredFocusedView();
    }

    [[nodiscard]] bool shouldUpdateFocusInContext(const FocusUpdateContext& context) override
    {
        return !mayMove || mayMove(context);
    }

    void didUpdateFocusInContextWithAnimationCoordinator(const FocusUpdateContext& context,
                                                         FocusAnimationCoordinator& coordinator) override
    {
        const auto nameOf = [](const View* view) {
            return view != nullptr ? view->accessibleName().toStdString() : "-";
        };
        log.push_back(nameOf(context.previouslyFocusedView) + ">" + nameOf(context.nextFocusedView));
        if (moved)
            moved(context, coordinator);
    }

protected:
    void viewDidLoad() override
    {
        for (const Place& place : m_places) {
            auto button = View::make<Button>();
            button->setTitle(QString::fromStdString(place.name));
            button->setBackgroundColor(Qt::darkGreen);
            button->setFrame(place.frame);
            view().addSubview(button);
            m_buttons.push_back(button);
        }
    }

private:
    std::vector<Place> m_places;
    std::vector<std::shared_ptr<Button>> m_buttons;
};

} // namespace virlo::test
