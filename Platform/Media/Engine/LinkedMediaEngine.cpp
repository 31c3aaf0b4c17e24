#include "GstMediaEngine.h"

namespace virlo
{

[[maybe_unused]] static const bool engineNamed = [] {
    MediaEngine::setMaker([]() -> MediaEngine* { return new GstMediaEngine; });
    return true;
}();

} // namespace virlo
