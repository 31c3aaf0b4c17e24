#include "VIRLOHostText.h"

#include "JSON.h"

#include <algorithm>

std::string VIRLOHostText::wellFormed(const std::string& text)
{
    if (std::ranges::all_of(text, [](unsigned char byte) { return byte < 0x80; }))
        return text;
    return virlo::JSON::parse(virlo::JSON(text).dump(-1, ' ', false, virlo::JSON::error_handler_t::replace))
        .get<std::string>();
}
