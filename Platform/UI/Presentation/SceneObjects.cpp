#include "SceneObjects.h"

#include "View.h"

#include <QQmlContext>

namespace virlo
{

SceneObjects::SceneObjects() = default;

SceneObjects::~SceneObjects() = default;

} // namespace virlo
