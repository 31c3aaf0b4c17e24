#pragma once

#include "Error.h"
#include "ViewController.h"

#include <functional>
#include <memory>

class VIRLOActivityIndicator;
class VIRLOAdItem;
class VIRLOAdServerAPI;
class VIRLOAdViewControllerBase;
class VIRLOFormButton;
class VIRLOFormDataSubmitter;
class VIRLOFormMode;
class VIRLOFormTextField;

namespace virlo
{
class KeyboardController;
class Label;
class LayoutConstraint;
class Timer;
} // namespace virlo

/// The contact form over an ad that stays visible behind it: a panel that asks for an e-mail address or a
/// phone number, and a second page that confirms its sending. A child of the ad's screen, which shows, hides
/// and removes it. Scene: "FormViewController". Main thread.
///
/// Select on the field opens the on-screen keyboard, or the platform's input method where QT_IM_MODULE names
/// one that shows itself; a real keyboard types at once. What is typed is checked when editing ends and again
/// before it is sent; it is kept in the preferences. A sending that has begun goes on when the form is
/// closed.
///
/// First focus: the field. Down leads to the send button once the text can be sent. Back: Menu closes the
/// keyboard first, then the form (the screen's business). The focus cannot leave it.
class VIRLOFormViewController : public virlo::ViewController
{
public:
    using CloseHandler = std::function<void()>;
    using Finished = std::function<void(bool finished)>;

    static constexpr const char* sceneIdentifier = "FormViewController";

    VIRLOFormViewController();
    ~VIRLOFormViewController() override;

    /// A form for the item as the parent's child, over its whole view and not yet visible; null where the
    /// scene cannot be loaded.
    [[nodiscard]] static std::shared_ptr<VIRLOFormViewController>
    createInParentViewControllerWithAdItem(VIRLOAdViewControllerBase& parent,
                                           const std::shared_ptr<VIRLOAdItem>& item);

    [[nodiscard]] std::shared_ptr<VIRLOAdItem> adItem() const { return m_adItem.lock(); }

    void setCloseHandler(CloseHandler closeHandler) { m_closeHandler = std::move(closeHandler); }

    /// Made on first use.
    [[nodiscard]] const std::shared_ptr<VIRLOFormDataSubmitter>& dataSubmitter();

    /// Checks the text: enables the send button and clears the alert, or disables it and shows the alert.
    bool validateInput();
    /// Checks, and then formats a phone number: deliberately the text is checked as it was typed.
    void textFieldDidEndEditing();
    /// The digits 0 to 9, in order.
    [[nodiscard]] static QString stripOffCharsFromNumber(const QString& number);
    /// "(123) 456-7890". Eight or nine digits deliberately keep a parenthesis without its counterpart.
    [[nodiscard]] static QString formattedPhoneNumberFromString(const QString& number);
    /// Nothing for a text that is not accepted and while a sending goes on.
    void sendData();
    /// Calls the close handler.
    void closeButtonTapped();

    /// Fades in, together with `animations`. `finished` is called with true at its end, and not at all where
    /// it is cut short.
    void showWithAnimationsFinished(std::function<void()> animations, Finished finished);
    /// The same, fading out. The form takes no key from now on.
    void hideWithAnimationsFinished(std::function<void()> animations, Finished finished);

    [[nodiscard]] virlo::View* preferredFocusedView() override { return m_focusPreference; }

    [[nodiscard]] bool shouldUpdateFocusInContext(const virlo::FocusUpdateContext& context) override;
    void
    didUpdateFocusInContextWithAnimationCoordinator(const virlo::FocusUpdateContext& context,
                                                    virlo::FocusAnimationCoordinator& coordinator) override;

protected:
    void viewDidLoad() override;
    void viewWillDisappear() override;

private:
    enum class State { Input, Sending, Submitted };

    [[nodiscard]] const VIRLOFormMode* mode() const;
    void setUpInputField();
    void fieldTextDidChange();
    void fieldDidLoseFocus();
    void fieldWasSelected();
    void openKeyboard();
    void openOnScreenKeyboard();
    void closeKeyboard();
    void keyboardDidEnd(bool done);
    void focusSendButton();
    void sendingDidSucceed();
    void sendingDidFail(const virlo::Error& error);
    void sendingDidEnd();
    void showSubmittedPage();
    void fade(double alpha, std::function<void()> animations, Finished finished);
    [[nodiscard]] std::weak_ptr<VIRLOFormViewController> weakSelf();

    std::weak_ptr<VIRLOAdItem> m_adItem;
    std::weak_ptr<VIRLOAdServerAPI> m_api;
    std::shared_ptr<VIRLOFormDataSubmitter> m_dataSubmitter;
    CloseHandler m_closeHandler;
    std::weak_ptr<virlo::KeyboardController> m_keyboard;
    std::shared_ptr<virlo::Timer> m_inputMethodTimer;
    std::shared_ptr<VIRLOActivityIndicator> m_activityIndicator; ///< while something is sent
    State m_state = State::Input;
    bool m_isEditing = false; ///< the text was changed by the viewer since it was checked
    virlo::View* m_focusPreference = nullptr;
    // Objects of the scene, which exists as long as this controller.
    virlo::View* m_formView = nullptr;
    virlo::View* m_formViewForm = nullptr;
    virlo::View* m_formViewSubmitted = nullptr;
    VIRLOFormTextField* m_formTextInputView = nullptr;
    VIRLOFormButton* m_sendDataButton = nullptr;
    VIRLOFormButton* m_adCompletedButton = nullptr;
    virlo::Label* m_formAlertLabel = nullptr;
    virlo::Label* m_formDescriptionLabel = nullptr;
    virlo::LayoutConstraint* m_formViewTopMargin = nullptr;
    virlo::LayoutConstraint* m_inputFieldHeight = nullptr;
    virlo::LayoutConstraint* m_sendBtnHeight = nullptr;
    virlo::LayoutConstraint* m_keyboardTop = nullptr; ///< 0 while there is none
};
