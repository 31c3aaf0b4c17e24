#include "VIRLOMimeType.h"

std::string VIRLOMimeType::mimeType(std::string_view bytes)
{
    switch (bytes.empty() ? 0 : static_cast<unsigned char>(bytes.front())) {
    case 0xFF:
        return "image/jpeg";
    case 0x89:
        return "image/png";
    case 0x47:
        return "image/gif";
    case 0x49:
    case 0x4D:
        return "image/tiff";
    case 0x25:
        return "application/pdf";
    case 0xD0:
        return "application/vnd";
    case 0x46:
        return "text/plain";
    default:
        return "application/octet-stream";
    }
}
