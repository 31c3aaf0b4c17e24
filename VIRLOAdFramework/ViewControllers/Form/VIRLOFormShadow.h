#pragma once

namespace virlo
{
class FocusAnimationCoordinator;
struct FocusUpdateContext;
class View;
} // namespace virlo

/// The shadow of the contact form's controls. Main thread.
namespace VIRLOFormShadow
{
/// In the move's animations: a shadow below `view` where it gains the focus, none to a side where it loses
/// it; the colour, opacity and radius stay, so a soft even halo remains on purpose.
void follow(virlo::View& view, const virlo::FocusUpdateContext& context,
            virlo::FocusAnimationCoordinator& coordinator);
} // namespace VIRLOFormShadow
