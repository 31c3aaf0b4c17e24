#include "VIRLOFormDataSubmitter.h"

#include "VIRLOAdItem.h"
#include "VIRLOAdServerAPI.h"

#include <utility>

using virlo::JSON;
using virlo::OptionalError;

VIRLOFormDataSubmitter::VIRLOFormDataSubmitter(std::weak_ptr<VIRLOAdServerAPI> api) : m_api(std::move(api)) {}

std::shared_ptr<VIRLOFormDataSubmitter>
VIRLOFormDataSubmitter::initWithApi(std::weak_ptr<VIRLOAdServerAPI> api)
{
    return std::shared_ptr<VIRLOFormDataSubmitter>(new VIRLOFormDataSubmitter(std::move(api)));
}

void VIRLOFormDataSubmitter::submitDataForItemWithCompletion(const JSON& data,
                                                             std::shared_ptr<const VIRLOAdItem> item,
                                                             Completion completion)
{
    if (m_dataToResend == data) {
        m_dataToResend = nullptr;
        registerClickWithDataItemCompletion(data, *item, std::move(completion));
        return;
    }
    const auto server = m_api.lock();
    if (!server)
        return;
    const VIRLOAdItem& submitted = *item;
    server->submitDataForItemWithCompletion(data, submitted,
                                            [self = shared_from_this(), data, item = std::move(item),
                                             completion = std::move(completion)](const OptionalError& error) {
                                                if (error)
                                                    completion(error);
                                                else
                                                    self->registerClickWithDataItemCompletion(data, *item,
                                                                                              completion);
                                            });
}

void VIRLOFormDataSubmitter::registerClickWithDataItemCompletion(const JSON& data, const VIRLOAdItem& item,
                                                                 Completion completion)
{
    const auto server = m_api.lock();
    if (!server)
        return;
    server->registerClickForItemWithDataWithCompletion(
        item, data,
        [self = shared_from_this(), data, completion = std::move(completion)](const OptionalError& error) {
            if (error)
                self->m_dataToResend = data;
            completion(error);
        });
}
