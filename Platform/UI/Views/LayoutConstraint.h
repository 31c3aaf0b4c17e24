#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

namespace virlo
{

/// A number that a scene's layout binds to and its view controller sets, such as a position:
/// `LayoutConstraint { id: left }  Button { x: left.constant }`.
class LayoutConstraint : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double constant READ constant WRITE setConstant NOTIFY constantChanged FINAL)

public:
    explicit LayoutConstraint(QObject* parent = nullptr);

    [[nodiscard]] double constant() const { return m_constant; }

    void setConstant(double constant);

signals:
    void constantChanged();

private:
    double m_constant = 0;
};

} // namespace virlo
