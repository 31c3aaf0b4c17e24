#pragma once

#include "Error.h"

#include <curl/curl.h>

#include <string>

namespace virlo
{

struct SessionState;

/// Which certificate authorities TLS trusts: the system's, and a session's own beside them. The system's are
/// looked up one by one in its hashed directory, because reading its whole bundle costs tens of milliseconds
/// per process; the bundle is the fallback of systems without such a directory. I/O thread.
class TrustedAuthorities
{
public:
    /// Looks where the system keeps its authorities.
    void locate();
    /// `session.authorities` holds the text of a bundle made for the session where one is needed.
    void apply(CURL* easy, SessionState& session) const;

private:
    std::string m_directory; // hashed; empty where there is none
    std::string m_bundle;
};

} // namespace virlo
