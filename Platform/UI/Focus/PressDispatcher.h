#pragma once

#include "Press.h"

#include <QPointer>

#include <map>
#include <memory>
#include <vector>

namespace virlo
{

class TapRecognizer;
class View;

/// Delivers presses from keys to recognisers and responders and makes sure that each one that began ends. One
/// for a presentation; main thread. Any call may end the presentation; the object then outlives the call and
/// delivers nothing more after `cancelAll`.
class PressDispatcher
{
public:
    /// `root` is the screen's view.
    explicit PressDispatcher(View& root);

    /// `first` is the focused view, or the root if none is. A key that is down already is ignored.
    void begin(int key, PressType type, View& first);
    void end(int key);
    void cancelAll();
    /// Cancels the held presses that responders have been told of; a press that a recogniser waits for, such
    /// as Menu, goes on.
    void cancelDelivered();

private:
    struct Held {
        PressType type;
        std::vector<QPointer<View>> chain; ///< from the view that began it up to the root
        std::shared_ptr<TapRecognizer> recognizer;
        QPointer<View> recognizerView;
    };

    void finish(const Held& held, bool cancelled);
    [[nodiscard]] bool isOnScreen(const View* view) const;

    QPointer<View> m_root;
    std::map<int, Held> m_held;
};

} // namespace virlo
