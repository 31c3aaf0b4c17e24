#pragma once

#include <QObject>
#include <QtQml/qqmlregistration.h>

#include <memory>

namespace virlo
{

class Animation;

/// A number that a scene's layout binds to and its view controller sets, such as a position:
/// `LayoutConstraint { id: left }  Button { x: left.constant }`.
///
/// Changed inside `Animation::animate`, what the scene sees moves to the new number along with what else that
/// changes. Main thread.
class LayoutConstraint : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double constant READ shownConstant WRITE setConstant NOTIFY shownConstantChanged FINAL)

public:
    explicit LayoutConstraint(QObject* parent = nullptr);
    ~LayoutConstraint() override;

    /// As last set.
    [[nodiscard]] double constant() const noexcept { return m_constant; }

    void setConstant(double constant);

    /// True at first. One that is not active is 0 for the scene.
    [[nodiscard]] bool isActive() const noexcept { return m_active; }

    void setActive(bool active);

    [[nodiscard]] double shownConstant() const noexcept { return m_shown; }

signals:
    void shownConstantChanged();

private:
    void move();
    void show(double constant);

    double m_constant = 0;
    bool m_active = true;
    double m_shown = 0;
    std::shared_ptr<Animation> m_animation;
};

} // namespace virlo
