#include "LayoutConstraint.h"

namespace virlo
{

LayoutConstraint::LayoutConstraint(QObject* parent) : QObject(parent) {}

void LayoutConstraint::setConstant(double constant)
{
    if (m_constant == constant)
        return;
    m_constant = constant;
    emit constantChanged();
}

} // namespace virlo
