#pragma once

#include "Error.h"

#include <curl/curl.h>

#include <string>

namespace virlo
{

struct SessionState;

/// The certificate authorities that TLS trusts: the system's, and a session's own beside them. The system's
/// are read one by one from its hashed directory, because reading its whole bundle takes tens of milliseconds
/// per process; the bundle is the fallback for systems without such a directory. I/O thread.
class TrustedAuthorities
{
public:
    /// Finds the system's authorities.
    void locate();
    /// `session.authorities` holds the text of a bundle made for the session where one is needed.
    void apply(CURL* easy, SessionState& session) const;

private:
    std::string m_directory; // hashed; empty where there is none
    std::string m_bundle;
};

} // namespace virlo
