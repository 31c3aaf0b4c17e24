#include "SceneInstance.h"

#include "View.h"

#include <QQmlContext>

namespace virlo
{

SceneInstance::SceneInstance() = default;

SceneInstance::~SceneInstance() = default;

} // namespace virlo
