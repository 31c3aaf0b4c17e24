#include "VIRLOVASTDocumentSession.h"

#include "NotificationCenter.h"

#include <mutex>

using virlo::NotificationCenter;
using virlo::URLSession;

namespace
{

struct Holder {
    std::mutex mutex;
    std::shared_ptr<URLSession> session;
    std::unique_ptr<NotificationCenter::Observation> termination;
};

Holder& holder()
{
    static auto& shared = *new Holder; // chains may outlive `main`
    return shared;
}

void terminate()
{
    std::shared_ptr<URLSession> session;
    {
        const std::lock_guard lock(holder().mutex);
        session.swap(holder().session);
    }
    if (session)
        session->invalidateAndCancel();
}

} // namespace

std::shared_ptr<URLSession> VIRLOVASTDocumentSession::sharedSession()
{
    Holder& shared = holder();
    const std::lock_guard lock(shared.mutex);
    if (!shared.session)
        shared.session =
            URLSession::sessionWithConfiguration(virlo::URLSessionConfiguration::defaultConfiguration());
    if (!shared.termination)
        shared.termination = NotificationCenter::defaultCenter().addObserver(
            virlo::ApplicationWillTerminateNotification, [](const auto&) { terminate(); });
    return shared.session;
}
