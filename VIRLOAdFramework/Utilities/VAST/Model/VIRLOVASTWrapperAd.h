#pragma once

#include "URL.h"
#include "VIRLOVASTAd.h"

#include <mutex>

/// An ad without a video of its own: it points to a further VAST document and adds its impressions, tracking
/// URLs and media files to the first ad of that document.
class VIRLOVASTWrapperAd : public VIRLOVASTAd
{
public:
    /// Copies the identifier of the ad first made for the same element, and nothing else.
    [[nodiscard]] static std::shared_ptr<VIRLOVASTWrapperAd> initWithAd(const VIRLOVASTAd& ad);

    explicit VIRLOVASTWrapperAd(const VIRLOVASTAd& ad);

    /// Location of the further document; absent where this one names none. Any thread.
    [[nodiscard]] std::optional<virlo::URL> VASTAdTagURL() const;
    void setVASTAdTagURL(std::optional<virlo::URL> url);

    [[nodiscard]] std::string description() const override;

private:
    mutable std::mutex m_mutex;
    std::optional<virlo::URL> m_VASTAdTagURL;
};
