#pragma once

#include "Error.h"
#include "JSON.h"

#include <functional>
#include <memory>

class VIRLOAdItem;
class VIRLOAdServerAPI;

/// Sends what the viewer typed into the contact form in two requests: the data to the item's `clickURL`, then
/// the click with the same data. Data that the server has accepted is not submitted a second time when the
/// viewer sends it again because the click had failed. Nothing is stored on the device.
///
/// One submitter belongs to one form; its requests keep it until they end. It has no lock: the next
/// submission begins after the former's completion. Without a server object nothing is sent, and the
/// completion is destroyed without a call.
class VIRLOFormDataSubmitter : public std::enable_shared_from_this<VIRLOFormDataSubmitter>
{
public:
    using Completion = std::function<void(const virlo::OptionalError&)>;

    [[nodiscard]] static std::shared_ptr<VIRLOFormDataSubmitter>
    initWithApi(std::weak_ptr<VIRLOAdServerAPI> api);

    VIRLOFormDataSubmitter(const VIRLOFormDataSubmitter&) = delete;
    VIRLOFormDataSubmitter& operator=(const VIRLOFormDataSubmitter&) = delete;

    /// `completion` is called once, on a worker, with the first error or none.
    void submitDataForItemWithCompletion(const virlo::JSON& data, std::shared_ptr<const VIRLOAdItem> item,
                                         Completion completion);
    /// Registers the click alone; a failure makes `data` the data to resend.
    void registerClickWithDataItemCompletion(const virlo::JSON& data, const VIRLOAdItem& item,
                                             Completion completion);

    /// The data that the server accepted last without its click; null at first. Other data that is sent
    /// meanwhile leaves it as it is.
    [[nodiscard]] const virlo::JSON& dataToResend() const noexcept { return m_dataToResend; }

private:
    explicit VIRLOFormDataSubmitter(std::weak_ptr<VIRLOAdServerAPI> api);

    const std::weak_ptr<VIRLOAdServerAPI> m_api;
    virlo::JSON m_dataToResend;
};
