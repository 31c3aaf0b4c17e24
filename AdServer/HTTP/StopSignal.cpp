#include "StopSignal.h"

#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <system_error>
#include <unistd.h>

namespace adserver
{

StopSignal::StopSignal() : m_descriptor(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
{
    if (m_descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "cannot make a stop signal");
}

StopSignal::~StopSignal()
{
    ::close(m_descriptor);
}

void StopSignal::raise()
{
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(m_descriptor, &one, sizeof one);
}

} // namespace adserver
