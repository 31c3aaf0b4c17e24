#include "VIRLOFormViewController.h"

#include "Animation.h"
#include "Convert.h"
#include "FocusAnimationCoordinator.h"
#include "FocusUpdateContext.h"
#include "GlobalQueue.h"
#include "Label.h"
#include "LayoutConstraint.h"
#include "MainLoop.h"
#include "Preferences.h"
#include "Storyboard.h"
#include "VIRLOActivityIndicator.h"
#include "VIRLOAdFrameworkLogger.h"
#include "VIRLOAdItem.h"
#include "VIRLOAdStoryboardScreens.h"
#include "VIRLOAdViewControllerBase.h"
#include "VIRLOFocusPreference.h"
#include "VIRLOFormButton.h"
#include "VIRLOFormDataSubmitter.h"
#include "VIRLOFormMode.h"
#include "VIRLOFormTextField.h"

#include <QPointer>

#include <utility>

using virlo::Animation;
using virlo::MainLoop;
using virlo::OptionalError;
using virlo::Preferences;
using virlo::Seconds;

namespace
{

constexpr double focusedHeight = 110;
constexpr double unfocusedHeight = 90;
constexpr double marginBelowPanel = 20;
constexpr Seconds fadeDuration{0.8F};
constexpr Seconds pageFadeDuration{1.0};

} // namespace

VIRLOFormViewController::VIRLOFormViewController() = default;
VIRLOFormViewController::~VIRLOFormViewController() = default;

std::shared_ptr<VIRLOFormViewController>
VIRLOFormViewController::createInParentViewControllerWithAdItem(VIRLOAdViewControllerBase& parent,
                                                                const std::shared_ptr<VIRLOAdItem>& item)
{
    const auto storyboard = virlo::Storyboard::storyboardWithName(VIRLOAdStoryboardScreens::storyboardName);
    auto form = storyboard ? std::dynamic_pointer_cast<VIRLOFormViewController>(
                                 storyboard->instantiateViewControllerWithIdentifier(sceneIdentifier))
                           : nullptr;
    if (!form)
        return nullptr;
    form->m_api = parent.api();
    form->m_adItem = item;
    form->loadViewIfNeeded();
    if (form->sceneHasFailed())
        return nullptr;
    form->view().setAlpha(0);
    parent.addChildViewController(form);
    parent.view().addSubview(form->view());
    parent.view().pinToEdges(form->view());
    return form;
}

std::weak_ptr<VIRLOFormViewController> VIRLOFormViewController::weakSelf()
{
    return std::static_pointer_cast<VIRLOFormViewController>(shared_from_this());
}

const std::shared_ptr<VIRLOFormDataSubmitter>& VIRLOFormViewController::dataSubmitter()
{
    if (!m_dataSubmitter)
        m_dataSubmitter = VIRLOFormDataSubmitter::initWithApi(m_api);
    return m_dataSubmitter;
}

const VIRLOFormMode* VIRLOFormViewController::mode() const
{
    const auto item = m_adItem.lock();
    const auto button = item ? item->actionButton() : nullptr;
    return VIRLOFormMode::ofActionType(button ? button->actionType() : std::nullopt);
}

// The view

void VIRLOFormViewController::viewDidLoad()
{
    ViewController::viewDidLoad();
    m_formView = outlet<virlo::View>("formView");
    m_formViewForm = outlet<virlo::View>("formViewForm");
    m_formViewSubmitted = outlet<virlo::View>("formViewSubmitted");
    m_formTextInputView = outlet<VIRLOFormTextField>("formTextInputView");
    m_sendDataButton = outlet<VIRLOFormButton>("sendDataButton");
    m_adCompletedButton = outlet<VIRLOFormButton>("adCompletedButton");
    m_formAlertLabel = outlet<virlo::Label>("formAlertLabel");
    m_formDescriptionLabel = outlet<virlo::Label>("formDescriptionLabel");
    m_formViewTopMargin = outlet<virlo::LayoutConstraint>("formViewTopMargin");
    m_inputFieldHeight = outlet<virlo::LayoutConstraint>("inputFieldHeight");
    m_sendBtnHeight = outlet<virlo::LayoutConstraint>("sendBtnHeight");
    m_keyboardTop = outlet<virlo::LayoutConstraint>("keyboardTop");
    if (sceneHasFailed())
        return;
    const auto item = m_adItem.lock();
    m_formDescriptionLabel->setText(virlo::toQString(item ? item->text().value_or("") : "").trimmed());
    m_formAlertLabel->setText({});
    setUpInputField();
    m_sendDataButton->setPrimaryAction([weak = weakSelf()] {
        if (const auto self = weak.lock())
            self->sendData();
    });
    m_adCompletedButton->setPrimaryAction([weak = weakSelf()] {
        if (const auto self = weak.lock())
            self->closeButtonTapped();
    });
    m_formView->setCornerRadius(5);
    m_formView->setShadowColor(Qt::black);
    m_formView->setShadowOpacity(0.4);
    m_formView->setShadowOffset({20, 20});
    // From the line that the panel stands on: the foot of the screen's middle, or the keyboard.
    m_formViewTopMargin->setConstant(-(m_formView->height() + marginBelowPanel));
    VIRLOFocusPreference::VIRLO_markFocusPreference(*m_formTextInputView);
    m_focusPreference = m_formTextInputView;
}

void VIRLOFormViewController::setUpInputField()
{
    m_inputFieldHeight->setConstant(unfocusedHeight);
    m_sendBtnHeight->setConstant(unfocusedHeight);
    if (const VIRLOFormMode* const current = mode()) {
        m_formTextInputView->setPlaceholder(QString::fromLatin1(current->placeholder));
        const auto stored = Preferences::standard().string(current->preferenceKey);
        m_formTextInputView->setText(virlo::toQString(stored.value_or("")));
        m_sendDataButton->setEnabled(current->accepts(m_formTextInputView->text()));
    }
    const auto connectField = [this](auto signal, void (VIRLOFormViewController::*handler)()) {
        QObject::connect(m_formTextInputView, signal, m_formTextInputView, [weak = weakSelf(), handler] {
            if (const auto self = weak.lock())
                (self.get()->*handler)();
        });
    };
    connectField(&virlo::TextField::textChanged, &VIRLOFormViewController::fieldTextDidChange);
    connectField(&virlo::View::focusedChanged, &VIRLOFormViewController::fieldDidLoseFocus);
    m_formTextInputView->setPrimaryAction([weak = weakSelf()] {
        if (const auto self = weak.lock())
            self->fieldWasSelected();
    });
}

void VIRLOFormViewController::viewWillDisappear()
{
    closeKeyboard();
    ViewController::viewWillDisappear();
}

// Sending

void VIRLOFormViewController::sendData()
{
    const VIRLOFormMode* const current = mode();
    auto item = m_adItem.lock();
    if (m_state != State::Input || current == nullptr || !item || !validateInput())
        return;
    m_state = State::Sending;
    // The viewer sends again from where the first sending began.
    m_focusPreference = m_sendDataButton;
    m_activityIndicator = virlo::View::make<VIRLOActivityIndicator>();
    m_activityIndicator->shownInView(*m_formView);

    const std::string text = m_formTextInputView->text().toStdString();
    Preferences::standard().setString(current->preferenceKey, text);
    Preferences::standard().synchronize();

    // The state ends with this, also where the completion is dropped without a call.
    const std::shared_ptr<void> sending(nullptr, [weak = weakSelf()](void*) {
        MainLoop::shared().post([weak] {
            if (const auto self = weak.lock())
                self->sendingDidEnd();
        });
    });
    const auto completion = [weak = weakSelf(), sending](const OptionalError& error) {
        MainLoop::shared().post([weak, sending, error] {
            const auto self = weak.lock();
            if (self && error)
                self->sendingDidFail(*error);
            else if (self)
                self->sendingDidSucceed();
        });
    };
    virlo::GlobalQueue::background().async([submitter = dataSubmitter(), item = std::move(item), completion,
                                            data = virlo::JSON{{current->dataKey, text}}] {
        submitter->submitDataForItemWithCompletion(data, item, completion);
    });
}

void VIRLOFormViewController::sendingDidFail(const virlo::Error& error)
{
    m_formAlertLabel->setText(
        QStringLiteral("Sorry but we can not connect with our server. Please try again."));
    VIRLOAdFrameworkLogger::logWarningWithFormat("Cannot submit contact data: %@", error);
}

void VIRLOFormViewController::sendingDidSucceed()
{
    m_state = State::Submitted;
}

void VIRLOFormViewController::sendingDidEnd()
{
    if (const auto indicator = std::exchange(m_activityIndicator, nullptr))
        indicator->dismiss();
    if (m_state == State::Submitted)
        showSubmittedPage();
    else
        m_state = State::Input;
}

void VIRLOFormViewController::showSubmittedPage()
{
    m_formViewSubmitted->setAlpha(0);
    m_formViewSubmitted->setVisible(true);
    Animation::animate(
        pageFadeDuration,
        [this] {
            m_formViewForm->setAlpha(0);
            m_formViewSubmitted->setAlpha(1);
        },
        [weak = weakSelf()](bool) {
            const auto self = weak.lock();
            if (!self)
                return;
            VIRLOFocusPreference::VIRLO_removeFocusPreference(*self->m_formTextInputView);
            VIRLOFocusPreference::VIRLO_markFocusPreference(*self->m_adCompletedButton);
            self->m_focusPreference = self->m_adCompletedButton;
            self->setNeedsFocusUpdate();
            self->updateFocusIfNeeded();
        });
}

void VIRLOFormViewController::closeButtonTapped()
{
    if (const auto handler = m_closeHandler)
        handler();
}

// Showing and hiding

void VIRLOFormViewController::fade(double alpha, std::function<void()> animations, Finished finished)
{
    Animation::animate(
        fadeDuration,
        [this, alpha, animations = std::move(animations)] {
            view().setAlpha(alpha);
            if (animations)
                animations();
        },
        [finished = std::move(finished)](bool ended) {
            if (ended && finished)
                finished(true);
        });
}

void VIRLOFormViewController::showWithAnimationsFinished(std::function<void()> animations, Finished finished)
{
    fade(1, std::move(animations), std::move(finished));
}

void VIRLOFormViewController::hideWithAnimationsFinished(std::function<void()> animations, Finished finished)
{
    closeKeyboard();
    view().setEnabled(false);
    fade(0, std::move(animations), std::move(finished));
}

// Focus

bool VIRLOFormViewController::shouldUpdateFocusInContext(const virlo::FocusUpdateContext& context)
{
    const virlo::View* const next = context.nextFocusedView;
    return next == m_adCompletedButton || next == m_formTextInputView || next == m_sendDataButton;
}

void VIRLOFormViewController::didUpdateFocusInContextWithAnimationCoordinator(
    const virlo::FocusUpdateContext& context, virlo::FocusAnimationCoordinator& coordinator)
{
    ViewController::didUpdateFocusInContextWithAnimationCoordinator(context, coordinator);
    const auto setHeight = [&](const virlo::View* view, double height) {
        const auto set = [&](bool applies, virlo::LayoutConstraint* constraint) {
            if (applies)
                coordinator.addCoordinatedAnimations([constraint = QPointer(constraint), height] {
                    if (constraint)
                        constraint->setConstant(height);
                });
        };
        set(qobject_cast<const VIRLOFormButton*>(view) != nullptr, m_sendBtnHeight);
        set(qobject_cast<const VIRLOFormTextField*>(view) != nullptr, m_inputFieldHeight);
    };
    setHeight(context.nextFocusedView, focusedHeight);
    setHeight(context.previouslyFocusedView, unfocusedHeight);
}
