#include "VIRLOAdVideoViewController.h"
#include "VIRLOAdViewControllerBase.h"
#include "VIRLOFormViewController.h"

#include <utility>

void VIRLOAdViewControllerBase::showFormForItem(const std::shared_ptr<VIRLOAdItem>& item)
{
    if (m_formViewController)
        return;
    auto form = VIRLOFormViewController::createInParentViewControllerWithAdItem(*this, item);
    if (!form)
        return;
    m_formViewController = std::move(form);
    m_formViewController->setCloseHandler(adCompleted());
    for (const auto& video : videos())
        video->pause();
    m_formViewController->showWithAnimationsFinished({}, [weak = weakSelf(*this)](bool) {
        if (const auto self = weak.lock()) {
            self->setNeedsFocusUpdate();
            self->updateFocusIfNeeded();
        }
    });
}

void VIRLOAdViewControllerBase::closeForm()
{
    if (!m_formViewController || std::exchange(m_formFadesOut, true))
        return;
    m_formViewController->hideWithAnimationsFinished({}, [weak = weakSelf(*this)](bool) {
        const auto self = weak.lock();
        if (!self || !self->m_formViewController)
            return;
        self->removeForm();
        for (const auto& video : self->videos())
            video->resume();
        self->setNeedsFocusUpdate();
        self->updateFocusIfNeeded();
    });
}

void VIRLOAdViewControllerBase::removeForm()
{
    const auto form = std::exchange(m_formViewController, nullptr);
    m_formFadesOut = false;
    if (form)
        form->removeFromParentViewController(); // and its view from this one
}

virlo::View* VIRLOAdViewControllerBase::focusOfForm() const
{
    return m_formViewController && !m_formFadesOut ? m_formViewController->preferredFocusedView() : nullptr;
}

virlo::View* VIRLOAdViewControllerBase::preferredFocusedView()
{
    virlo::View* const form = focusOfForm();
    return form != nullptr ? form : ViewController::preferredFocusedView();
}
