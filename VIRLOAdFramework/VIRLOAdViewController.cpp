#include "VIRLOAdViewController.h"

#include <utility>

VIRLOAdViewController::VIRLOAdViewController() = default;
VIRLOAdViewController::~VIRLOAdViewController() = default;

VIRLOAdViewController::AdCompleted VIRLOAdViewController::adCompleted() const
{
    const std::lock_guard lock(m_mutex);
    return m_adCompleted;
}

void VIRLOAdViewController::setAdCompleted(AdCompleted adCompleted)
{
    // The old one is destroyed outside the lock.
    const std::lock_guard lock(m_mutex);
    m_adCompleted.swap(adCompleted);
}
