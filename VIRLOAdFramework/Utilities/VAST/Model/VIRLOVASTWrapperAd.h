#pragma once

#include "URL.h"
#include "VIRLOVASTAd.h"

#include <mutex>

/// An ad without a film of its own: it points to a further VAST document and adds its own addresses and films
/// to what that one holds.
class VIRLOVASTWrapperAd : public VIRLOVASTAd
{
public:
    /// Takes the identifier of the ad that stood for the same element, and nothing else.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTWrapperAd> initWithAd(const VIRLOVASTAd& ad);

    /// Where the further document is; absent where this one names none. Any thread, beside its setter too.
    [[nodiscard]] std::optional<virlo::URL> VASTAdTagURL() const;
    void setVASTAdTagURL(std::optional<virlo::URL> url);

    [[nodiscard]] std::string description() const override;

protected:
    explicit VIRLOVASTWrapperAd(const VIRLOVASTAd& ad);

private:
    mutable std::mutex m_mutex;
    std::optional<virlo::URL> m_VASTAdTagURL;
};
