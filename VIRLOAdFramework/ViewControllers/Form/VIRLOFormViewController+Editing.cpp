#include "KeyboardController.h"
#include "Label.h"
#include "LayoutConstraint.h"
#include "Timer.h"
#include "VIRLOFormButton.h"
#include "VIRLOFormMode.h"
#include "VIRLOFormTextField.h"
#include "VIRLOFormViewController.h"

#include <QGuiApplication>
#include <QInputMethod>
#include <QSignalBlocker>

using virlo::Seconds;

namespace
{

constexpr Seconds inputMethodLimit{0.5};

/// Whether the platform has an input method of its own to type by. Without the variable Qt has one on the
/// desktop that only composes characters.
bool hasPlatformInputMethod()
{
    const QByteArray module = qgetenv("QT_IM_MODULE");
    return !module.isEmpty() && module != "none" && module != "compose";
}

} // namespace

// The text

bool VIRLOFormViewController::validateInput()
{
    const VIRLOFormMode* const current = mode();
    const bool valid = current != nullptr && current->accepts(m_formTextInputView->text());
    m_sendDataButton->setEnabled(valid);
    if (current != nullptr)
        m_formAlertLabel->setText(valid ? QString() : QString::fromLatin1(current->alert));
    return valid;
}

void VIRLOFormViewController::textFieldDidEndEditing()
{
    validateInput();
    const VIRLOFormMode* const current = mode();
    if (current != nullptr && current->isPhone) {
        // Not the viewer's edit: the verdict is that on the text as it was typed.
        const QSignalBlocker blocker(m_formTextInputView);
        m_formTextInputView->setText(formattedPhoneNumberFromString(m_formTextInputView->text()));
    }
    m_isEditing = false;
}

QString VIRLOFormViewController::stripOffCharsFromNumber(const QString& number)
{
    QString digits;
    for (const QChar character : number) {
        if (character >= u'0' && character <= u'9')
            digits += character;
    }
    return digits;
}

QString VIRLOFormViewController::formattedPhoneNumberFromString(const QString& number)
{
    QString text = stripOffCharsFromNumber(number);
    const qsizetype digits = text.size();
    if (digits >= 5)
        text.insert(digits - 4, u'-');
    if (digits >= 8)
        text.insert(digits - 7, QStringLiteral(") "));
    if (digits >= 10)
        text.insert(digits - 10, u'(');
    return text;
}

// Editing

void VIRLOFormViewController::fieldTextDidChange()
{
    // The viewer alone edits while the field has the focus.
    if (!m_formTextInputView->isFocused() || m_state != State::Input)
        return;
    m_isEditing = true;
    const VIRLOFormMode* const current = mode();
    const bool valid = current != nullptr && current->accepts(m_formTextInputView->text());
    // A viewer who types on a real keyboard must be able to go on to the button; only the alert waits for the
    // end of editing.
    m_sendDataButton->setEnabled(valid);
    if (valid)
        m_formAlertLabel->setText({});
}

void VIRLOFormViewController::fieldDidLoseFocus()
{
    if (m_isEditing && !m_formTextInputView->isFocused() && m_keyboard.expired())
        textFieldDidEndEditing();
}

void VIRLOFormViewController::fieldWasSelected()
{
    if (m_state != State::Input)
        return;
    if (!m_isEditing) {
        openKeyboard();
        return;
    }
    // Return on a real keyboard.
    textFieldDidEndEditing();
    focusSendButton();
}

void VIRLOFormViewController::openKeyboard()
{
    if (!hasPlatformInputMethod()) {
        openOnScreenKeyboard();
        return;
    }
    QGuiApplication::inputMethod()->show();
    // One that composes only, or could not be loaded, shows nothing to type by.
    m_inputMethodTimer = virlo::Timer::once(inputMethodLimit, [weak = weakSelf()] {
        const auto self = weak.lock();
        if (self && self->m_formTextInputView->isFocused() && !QGuiApplication::inputMethod()->isVisible())
            self->openOnScreenKeyboard();
    });
}

void VIRLOFormViewController::openOnScreenKeyboard()
{
    const VIRLOFormMode* const current = mode();
    if (current == nullptr || m_state != State::Input || !m_keyboard.expired())
        return;
    const auto keyboard = ViewController::make<virlo::KeyboardController>(
        *m_formTextInputView,
        current->isPhone ? virlo::KeyboardLayout::phone() : virlo::KeyboardLayout::email(),
        [weak = weakSelf()](bool done) {
            if (const auto self = weak.lock())
                self->keyboardDidEnd(done);
        });
    presentViewController(keyboard);
    if (!keyboard->presentation())
        return;
    m_keyboard = keyboard;
    m_keyboardTop->setConstant(keyboard->top());
}

void VIRLOFormViewController::closeKeyboard()
{
    if (const auto keyboard = m_keyboard.lock())
        keyboard->dismissViewController();
}

void VIRLOFormViewController::keyboardDidEnd(bool done)
{
    m_keyboard.reset();
    m_keyboardTop->setConstant(0);
    textFieldDidEndEditing();
    if (done)
        focusSendButton();
}

void VIRLOFormViewController::focusSendButton()
{
    if (!m_sendDataButton->isEnabled())
        return;
    m_focusPreference = m_sendDataButton;
    setNeedsFocusUpdate();
    updateFocusIfNeeded();
}
