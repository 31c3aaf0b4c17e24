#include "FormTest.h"

#include "KeyboardKey.h"
#include "Label.h"
#include "Preferences.h"
#include "Settle.h"
#include "VIRLOConstans.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace virlo::test
{

namespace
{

const std::array preferenceKeys{VIRLOAdFrameworkPreferencesEmailAddress,
                                VIRLOAdFrameworkPreferencesPhoneNumber};

void collectKeys(const QQuickItem& item, std::vector<KeyboardKey*>& keys)
{
    for (QQuickItem* const child : item.childItems()) {
        if (auto* const key = qobject_cast<KeyboardKey*>(child))
            keys.push_back(key);
        collectKeys(*child, keys);
    }
}

std::string nameOf(const std::vector<View*>& focused)
{
    if (focused.size() != 1)
        return focused.empty() ? "none" : "several";
    return focused.front()->accessibleName().toStdString();
}

} // namespace

FormTest::FormTest()
{
    for (const char* const key : preferenceKeys)
        Preferences::standard().setString(key, std::nullopt);
}

JSON FormTest::form(const std::string& actionType, const JSON& item)
{
    JSON changes = item.is_null() ? JSON::object() : item;
    if (!changes.contains("description"))
        changes["description"] = "Three nights in a cabin of your own above the clouds. Shall we call you?";
    changes["actionButton"] = {{"actionType", actionType}, {"text", "Ask"},   {"textRed", 255},
                               {"textGreen", 255},         {"textBlue", 255}, {"backgroundRed", 160},
                               {"xPosition", 1300},        {"yPosition", 840}};
    return changes;
}

void FormTest::open(const std::string& actionType, const JSON& item)
{
    screen = shown(ad(form(actionType, item)));
    click(Qt::Key_Return);
    animations.advance(Seconds(1));
    ASSERT_TRUE(screen->formViewController());
}

void FormTest::openWith(const std::string& actionType, const std::string& text)
{
    for (const char* const key : preferenceKeys)
        Preferences::standard().setString(key, text);
    open(actionType);
}

VIRLOFormTextField& FormTest::field() const
{
    return *screen->formViewController()->view().property("formTextInputView").value<VIRLOFormTextField*>();
}

VIRLOFormButton& FormTest::sendButton() const
{
    return *screen->formViewController()->view().property("sendDataButton").value<VIRLOFormButton*>();
}

std::string FormTest::alert() const
{
    return screen->formViewController()
        ->view()
        .property("formAlertLabel")
        .value<Label*>()
        ->text()
        .toStdString();
}

bool FormTest::fadesOut() const
{
    return !screen->formViewController()->view().isEnabled();
}

bool FormTest::awaitPage()
{
    return settle([&] {
        animations.advance(Seconds(0.1));
        return focus() == "Continue";
    });
}

std::string FormTest::focus() const
{
    std::vector<KeyboardKey*> keys;
    collectKeys(*window.contentItem(), keys);
    if (keys.empty())
        return nameOf(focusedViews(screen->view()));
    std::vector<View*> focused;
    std::copy_if(keys.begin(), keys.end(), std::back_inserter(focused),
                 [](const KeyboardKey* key) { return key->isFocused(); });
    return nameOf(focused);
}

void FormTest::pick(const std::string& key)
{
    std::vector<KeyboardKey*> keys;
    collectKeys(*window.contentItem(), keys);
    const auto found = std::find_if(keys.begin(), keys.end(), [&](const KeyboardKey* one) {
        return one->accessibleName().toStdString() == key;
    });
    ASSERT_NE(found, keys.end()) << key;
    const auto middle = [](const View& view) { return view.frame().center(); };
    for (int move = 0; move < 30 && !(*found)->isFocused(); ++move) {
        const auto at = std::find_if(keys.begin(), keys.end(), [](auto* one) { return one->isFocused(); });
        ASSERT_NE(at, keys.end());
        const QPointF way = middle(**found) - middle(**at);
        const bool vertical = std::abs(way.y()) > 20;
        window.click(vertical ? (way.y() > 0 ? Qt::Key_Down : Qt::Key_Up)
                              : (way.x() > 0 ? Qt::Key_Right : Qt::Key_Left));
    }
    ASSERT_TRUE((*found)->isFocused()) << key;
    window.click(Qt::Key_Return);
    animations.advance(Seconds(0.3));
}

void FormTest::typeByRemote(const std::string& text)
{
    for (const char letter : text)
        pick(letter == '.' ? "Dot" : std::string(1, letter));
}

std::vector<std::string> FormTest::bodies(const std::string& path)
{
    std::vector<std::string> result;
    for (const auto& request : server().requests()) {
        if (request.method == "POST" && request.path.starts_with(path))
            result.push_back(request.body);
    }
    return result;
}

} // namespace virlo::test
